#!/bin/bash
# Runs a command as root on a throw-away Linux machine with real SCSI disks: a kernel that runs as an ordinary process (User-Mode
# Linux) over a copy-on-write view of this machine's root. Needs no privileges and installs nothing.
#   run-in-guest.sh [--limit SECONDS] [--memory SIZE] [--mount DIR]... [--show DIR]... -- COMMAND [ARGUMENT...]
#   run-in-guest.sh --prepare     only download and unpack what the guest needs (done by the first run otherwise)
# --limit    ends the guest after that time (default 180)
# --memory   the guest's memory (default 1G)
# --mount    DIR of this machine at the same path, writable: what the command writes there stays
# --show     DIR at the same path, copy-on-write; needed only below /tmp, /run and /var/log, which are empty in the guest
# The guest sees this machine's files at their own paths, writes vanish. In it: udev, open-iscsi (iscsid runs), the kernel's iSCSI
# target (configfs), sudo, lsscsi, sg3-utils, and host/security_sudo_v3.sh with its sudoers entry in their real places.
# The command starts in the current folder with PATH, HOME, TERM and TMPDIR=/tmp as its whole environment; its output (both streams)
# appears on standard output as it comes. Exit status: the command's; 124 time limit; 125 the guest failed (log: guest.log in
# .cache/kernel-host); 2 wrong arguments. Several guests may run at once.
set -euo pipefail
HERE=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
# shellcheck source=scripts/common.sh
source "$HERE/../../scripts/common.sh"
# shellcheck source=tests/kernel_host/unpack.sh
source "$HERE/unpack.sh"
CACHE=${BREVAN_KERNEL_HOST_CACHE:-$TOP/.cache/kernel-host}
# These measure or set up what no test uses; without them the kernel starts a second earlier.
SKIPPED=initcall_blacklist=raid6_select_algo,calibrate_xor_blocks,init_btrfs_fs,init_zswap

fail() { die "$1" 125; }

parseArguments() {
    limit=180 memory=1G mounts=() shows=("$TOP" "$PWD") command=()
    while [[ $# -gt 0 ]]; do
        case $1 in
        --limit) limit=${2:-}; shift; [[ $limit =~ ^[1-9][0-9]{0,4}$ ]] || die "--limit takes whole seconds" 2 ;;
        --memory) memory=${2:-}; shift; [[ $memory =~ ^[1-9][0-9]*[MG]$ ]] || die "--memory takes a size such as 512M or 1G" 2 ;;
        --mount | --show)
            [[ -d ${2:-} ]] || die "$1: there is no folder ${2:-}" 2
            if [[ $1 == --mount ]]; then mounts+=("$(cd "$2" && pwd)"); else shows+=("$(cd "$2" && pwd)"); fi
            shift ;;
        --prepare) unpackGuest; exit 0 ;;
        --help | -h) usage; exit 0 ;;
        --) shift; command=("$@"); break ;;
        *) die "unknown argument $1 (see --help)" 2 ;;
        esac
        shift
    done
    [[ ${#command[@]} -gt 0 ]] || die "no command given: run-in-guest.sh [OPTION...] -- COMMAND" 2
}

quoteForFstab() { local path=${1//\\/\\134}; path=${path// /\\040}; echo "${path//$'\t'/\\011}"; }
isMasked() { [[ $1 =~ ^/(tmp|run|var/log|dev|proc|sys)(/|$) ]]; }

writeFileSystems() {                         # fstab: before the mount points of POINTS exist; fstab.late: after
    local path point points=()
    cat >"$run/fstab" <<END
none /mnt/tools hostfs $(quoteForFstab "$GUEST_ROOT/tools") 0 0
none /mnt/host hostfs / 0 0
none /mnt/new overlay lowerdir=/mnt/run/layer:/mnt/tools:/mnt/host,upperdir=/mnt/up,workdir=/mnt/work 0 0
/mnt/new /mnt/plain none bind 0 0
proc /mnt/new/proc proc defaults 0 0
sys /mnt/new/sys sysfs defaults 0 0
dev /mnt/new/dev devtmpfs defaults 0 0
run /mnt/new/run tmpfs mode=755 0 0
log /mnt/new/var/log tmpfs mode=755 0 0
tmp /mnt/new/tmp tmpfs mode=1777 0 0
END
    points=(/mnt/new/{dev/pts,dev/shm,run/udev,run/lock/iscsi,run/kernel-host,lib/modules})
    cat >"$run/fstab.late" <<END
devpts /mnt/new/dev/pts devpts defaults 0 0
shm /mnt/new/dev/shm tmpfs mode=1777 0 0
none /mnt/new/run/kernel-host hostfs $(quoteForFstab "$run") 0 0
none /mnt/new/lib/modules hostfs $(quoteForFstab "$GUEST_ROOT/uml/usr/lib/uml/modules") 0 0
END
    for path in "${shows[@]}"; do
        isMasked "$path" || continue
        [[ " ${mounts[*]} " != *" $path "* ]] || continue
        points+=("/mnt/new$path")
        point=$(quoteForFstab "$path")
        echo "/mnt/plain$point /mnt/new$point none bind 0 0" >>"$run/fstab.late"
    done
    for path in "${mounts[@]}"; do
        points+=("/mnt/new$path")
        point=$(quoteForFstab "$path")
        echo "none /mnt/new$point hostfs $point 0 0" >>"$run/fstab.late"
    done
    { printf 'MODULES=%q HOST_UID=%q\nset --' "$GUEST_ROOT/uml/usr/lib/uml/modules" "$EUID"; printf ' %q' "${points[@]}"; echo; } >"$run/settings"
}

writeLayer() {                               # files of this run that lie over the machine's: what an installed host has
    local layer=$run/layer
    install -d -m 755 "$layer"/{etc,etc/iscsi,etc/sudoers.d,opt,opt/root_tool,opt/root_tool/common}
    install -m 755 "$TOP/host/security_sudo_v3.sh" "$layer/opt/root_tool/common/"
    install -m 440 "$TOP/host/sudoers.d/brevan" "$layer/etc/sudoers.d/"
    echo "127.0.0.1 localhost kernel-host" >"$layer/etc/hosts"
    echo "InitiatorName=$INITIATOR" >"$layer/etc/iscsi/initiatorname.iscsi"
    { grep -v '^brevan:' /etc/group; echo "brevan:x:991:"; } >"$layer/etc/group"
    chmod 644 "$layer"/etc/{group,hosts} "$layer"/etc/iscsi/*
}

writeRun() {                                 # this run's folder; its path has no blank, so the kernel's command line can name it
    INITIATOR=iqn.2024-01.com.example:kernel-host
    cp "$GUEST_ROOT/tools/usr/bin/busybox" "$HERE/guest/own.sh" "$run/"
    cp "$HERE/guest/start.sh" "$run/start"
    { echo "#!$run/busybox sh"; tail -n +2 "$HERE/guest/init.sh"; } >"$run/init"
    chmod +x "$run/init"
    mkdir "$run/dev"
    ln -s /proc/self/fd "$run/dev/fd"
    ln -s /proc/self/fd/0 "$run/dev/stdin"
    ln -s /proc/self/fd/1 "$run/dev/stdout"
    ln -s /proc/self/fd/2 "$run/dev/stderr"
    writeFileSystems
    writeLayer
    { printf 'cd %q || exit 125\nexec' "$PWD"; printf ' %q' "${command[@]}"; echo; } >"$run/command"
}

memoryFolder() {                             # the file behind the guest's memory: in the machine's memory if there is room
    local wanted=${memory%[MG]} free
    [[ $memory == *M ]] || wanted=$((wanted * 1024))
    free=$(df -m --output=avail /dev/shm 2>/dev/null | tail -n 1) || free=0
    if [[ ${free:-0} -gt $((wanted + 64)) && -w /dev/shm ]]; then echo /dev/shm; else echo /tmp; fi
}

# The guest hands over between its processes at every system call, which is three times as fast on one processor. Chooses one that
# no other guest has (descriptor 8 keeps it), else any.
oneProcessor() {
    local all cpu
    mapfile -t all < <(taskset -pc $$ | sed 's/.*: //' | tr , '\n' | while IFS=- read -r first last; do seq "$first" "${last:-$first}"; done)
    for cpu in "${all[@]}"; do
        exec 8>>"$CACHE/processor-$cpu"
        if flock -n 8; then processor=$cpu; return; fi
    done
    processor=${all[$(($$ % ${#all[@]}))]}
}

# The kernel's console goes into the log, the command's serial line through descriptor 3 to standard output and into the log.
boot() {
    local guest
    exec 3> >(exec tee -a "$log")
    copier=$!
    oneProcessor
    setpriv --pdeathsig TERM taskset -c "$processor" env -i HOME="$run" TMPDIR="$(memoryFolder)" timeout -k 5 "$limit" \
        "$GUEST_ROOT/uml/usr/bin/linux.uml" "mem=$memory" loglevel=1 root=/dev/root rootfstype=hostfs rootflags=/ ro \
        "init=$run/init" "RUN=$run" "$SKIPPED" con=null con0=null,fd:1 ssl=null ssl0=null,fd:3 </dev/null >>"$log" 2>&1 8>&- 9>&- &
    guest=$!
    trap 'kill "$guest" 2>/dev/null || true; wait "$guest" || true; exit 143' INT TERM HUP
    bootStatus=0
    wait "$guest" 2>/dev/null || bootStatus=$?     # the shell would report a panicked kernel as "Aborted"
    exec 3>&-
    wait "$copier" || true
}

explain() {                                  # the guest ended without the command's status: why
    if [[ $bootStatus -eq 124 || $bootStatus -eq 137 ]]; then
        die "the guest was ended after the limit of $limit s (log: $CACHE/guest.log)" 124
    fi
    if grep -aq 'Kernel panic' "$CACHE/guest.log"; then
        grep -a -m 1 'Kernel panic' "$CACHE/guest.log" >&2
        fail "the guest's kernel panicked (log: $CACHE/guest.log)"
    fi
    tail -n 5 "$CACHE/guest.log" >&2
    fail "the guest ended without a result (log: $CACHE/guest.log)"
}

parseArguments "$@"
unpackGuest
run=$(mktemp -d /tmp/brevan-guest.XXXXXX)
log=$run/log
trap 'rm -rf "$run"' EXIT
writeRun
boot
cp "$log" "$CACHE/guest.log.$$" && mv "$CACHE/guest.log.$$" "$CACHE/guest.log"
[[ -s $run/status ]] || explain
exit "$(<"$run/status")"
