#!/bin/bash
# Tests of host/security_sudo_v3.sh in a sandbox: its own /sys, /run and /usr/sbin, so that nothing of the machine is touched.
set -euo pipefail
TOP=$(cd "$(dirname "$0")/../.." && pwd)
SCRIPT=/opt/root_tool/common/security_sudo_v3.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fresh() {                                    # an empty host; tools that write down how they were called
    rm -rf "${work:?}"/*
    mkdir -p "$work"/{run,opt/root_tool/common,sbin} "$work"/sys/{block,class/{iscsi_session,iscsi_host,scsi_host}}
    cp "$TOP/host/security_sudo_v3.sh" "$work/opt/root_tool/common/"
    tool iscsiadm 0
    tool udevadm 0
}
tool() {                                     # NAME STATUS: it also records its environment and whether it got the lock
    cat >"$work/sbin/$1" <<END
#!/bin/bash
echo "$1 \$*" >>/run/calls
/usr/bin/env >>/run/environment
[ ! -e /proc/self/fd/9 ] || echo "$1 has the lock" >>/run/calls
exit $2
END
    chmod +x "$work/sbin/$1"
}
host() { mkdir -p "$work/sys/class/scsi_host/$1"; : >"$work/sys/class/scsi_host/$1/scan"; }
iscsiHost() { host "$1"; mkdir -p "$work/sys/class/iscsi_host/$1"; }
session() { mkdir -p "$work/sys/class/iscsi_session/$1"; }
disk() { mkdir -p "$work/sys/block/$1/device"; : >"$work/sys/block/$1/device/rescan"; }

sandbox() {                                  # COMMAND...: status in $status, output in $out, errors in $err
    status=0
    bwrap --unshare-user --unshare-pid --unshare-ipc --die-with-parent --uid "${uid:-0}" --ro-bind / / --proc /proc --dev /dev \
        --tmpfs /tmp --bind "$work/sys" /sys --bind "$work/run" /run --ro-bind "$work/opt" /opt --ro-bind "$work/sbin" /usr/sbin \
        "$@" >"$work/out" 2>"$work/err" </dev/null || status=$?
    out=$(<"$work/out") err=$(<"$work/err")
}
rescan() { sandbox "$SCRIPT" "$@"; }
calls() { cat "$work/run/calls" 2>/dev/null || true; }

is() {                                       # WHAT GOT WANTED
    [[ $2 == "$3" ]] || { echo "  $1: got '$2', wanted '$3'"; failures=$((failures + 1)); }
}
has() {                                      # WHAT TEXT PART
    [[ $2 == *"$3"* ]] || { echo "  $1: '$3' is not in '$2'"; failures=$((failures + 1)); }
}

rescansSessionsAndTheOtherHosts() {
    session session1; iscsiHost host3; host host0; host host1
    rescan do_uprescan
    is status "$status" 0
    is output "$out" $'iSCSI sessions rescanned: session1\nSCSI hosts scanned: host0 host1'
    is calls "$(calls)" $'iscsiadm -m session --rescan\nudevadm settle --timeout=60'
    is host0 "$(<"$work/sys/class/scsi_host/host0/scan")" "- - -"
    is host1 "$(<"$work/sys/class/scsi_host/host1/scan")" "- - -"
    is "host of the session" "$(<"$work/sys/class/scsi_host/host3/scan")" ""
}
leavesIscsiadmAloneWithoutSessions() {
    rescan do_uprescan
    is status "$status" 0
    is output "$out" "SCSI hosts scanned: none"
    is calls "$(calls)" "udevadm settle --timeout=60"
}
scansTheHostWhenIscsiadmFails() {
    session session1; iscsiHost host3; tool iscsiadm 21
    rescan do_uprescan
    is status "$status" 6
    has error "$err" "iscsiadm could not rescan"
    is host3 "$(<"$work/sys/class/scsi_host/host3/scan")" "- - -"
}
goesOnWhenOneHostFails() {
    host host1; mkdir -p "$work/sys/class/scsi_host/host0/scan"      # a folder cannot be written to
    rescan do_uprescan
    is status "$status" 6
    has error "$err" "SCSI host host0 could not be scanned"
    is host1 "$(<"$work/sys/class/scsi_host/host1/scan")" "- - -"
}
worksOnAHostWithoutAnyScsi() {               # not even the folders, as without the kernel's modules
    rm -rf "$work"/sys/class/*
    rescan do_uprescan
    is status "$status" 0
    is output "$out" "SCSI hosts scanned: none"
    is errors "$err" ""
}
endsAnIscsiadmThatHangs() {
    session session1; iscsiHost host3
    sed -i 's/ISCSI_SECONDS=120/ISCSI_SECONDS=0.2/' "$work/opt/root_tool/common/security_sudo_v3.sh"
    printf '#!/bin/sh\nexec sleep 1000\n' >"$work/sbin/iscsiadm"
    rescan do_uprescan
    is status "$status" 6
    has error "$err" "iscsiadm could not rescan"
    is host3 "$(<"$work/sys/class/scsi_host/host3/scan")" "- - -"
    is calls "$(calls)" "udevadm settle --timeout=60"
}
failsWhenUdevDoesNotSettle() {
    tool udevadm 1
    rescan do_uprescan
    is status "$status" 6
    has error "$err" "udev did not settle"
}
rescansOneDisk() {
    disk sdc; disk sdd
    rescan dev_rescan sdc
    is status "$status" 0
    is output "$out" "SCSI disk rescanned: sdc"
    is sdc "$(<"$work/sys/block/sdc/device/rescan")" 1
    is sdd "$(<"$work/sys/block/sdd/device/rescan")" ""
}
refusesADiskThatIsNotThere() {
    rescan dev_rescan sdc
    is status "$status" 5
    has error "$err" "no block device sdc"
    mkdir "$work/sys/block/loop0"
    rescan dev_rescan loop0
    is status "$status" 5
    has error "$err" "loop0 is no SCSI disk"
}
failsWhereADiskCannotBeRescanned() {
    mkdir -p "$work/sys/block/sdc/device/rescan"                     # a folder cannot be written to
    rescan dev_rescan sdc
    is status "$status" 6
    has error "$err" "sdc could not be rescanned"
}
refusesWrongArguments() {
    disk sdc
    local words
    for words in "" reboot "do_uprescan sdc" "do_uprescan --help" dev_rescan "dev_rescan sdc sdc" "dev_rescan ../block/sdc" \
        "dev_rescan -sdc" "dev_rescan 1sdc" "dev_rescan SDC" "dev_rescan sdc*" "dev_rescan sdc;id" "main do_uprescan" \
        "dev_rescan $(printf 's%.0s' {1..32})" "dev_rescan sd/c" "dev_rescan \$(id)" "dev_rescan --" "--help" "-x do_uprescan"; do
        # shellcheck disable=SC2086
        (set -f; rescan $words; echo "$status" >"$work/status")
        is "status of '$words'" "$(<"$work/status")" 2
    done
    rescan dev_rescan ""
    is "status of an empty name" "$status" 2
    rescan dev_rescan $'sdc\nsdc'
    is "status of two lines" "$status" 2
    is calls "$(calls)" ""
}
refusesAnyoneButRoot() {
    uid=1000 rescan do_uprescan
    is status "$status" 3
    has error "$err" "must run as root"
    is calls "$(calls)" ""
}
takesNothingFromTheEnvironment() {
    printf 'echo "evil ran" >>/run/calls\n' >"$work/run/evil"
    session session1
    sandbox --setenv PATH /run --setenv BASH_ENV /run/evil --setenv ENV /run/evil --setenv SHELLOPTS xtrace --setenv IFS e \
        --setenv 'BASH_FUNC_flock%%' '() { echo "evil ran" >>/run/calls; }' --setenv BREVAN_ANY thing --setenv LOCK /run/evil "$SCRIPT" do_uprescan
    is status "$status" 0
    is calls "$(calls)" $'iscsiadm -m session --rescan\nudevadm settle --timeout=60'
    is names "$(sed 's/=.*//' "$work/run/environment" | sort -u | tr '\n' ' ')" "LC_ALL PATH PWD SHLVL _ "         # bash itself sets the last three
    has path "$(<"$work/run/environment")" "PATH=/usr/sbin:/usr/bin:/sbin:/bin"
}
neverOverlaps() {
    cat >"$work/sbin/udevadm" <<'END'
#!/bin/bash
echo begin >>/run/calls; sleep 0.1; echo end >>/run/calls
END
    sandbox /bin/bash -c "$SCRIPT do_uprescan & $SCRIPT do_uprescan & $SCRIPT do_uprescan & wait"
    is calls "$(calls | tr '\n' ' ')" "begin end begin end begin end "
}
givesUpOnALockThatStays() {
    disk sdc
    sed -i 's/^LOCK_SECONDS=300/LOCK_SECONDS=0/' "$work/opt/root_tool/common/security_sudo_v3.sh"
    local command
    for command in do_uprescan "dev_rescan sdc"; do
        sandbox /bin/bash -c "exec 8>/run/brevan-rescan.lock; flock 8; $SCRIPT $command"
        is "status of $command" "$status" 4
        has error "$err" "another rescan holds /run/brevan-rescan.lock"
    done
    is calls "$(calls)" ""
    is sdc "$(<"$work/sys/block/sdc/device/rescan")" ""
}
leavesNoLockBehind() {                       # killed at its last step, while a daemon goes on that it has started
    session session1
    sed -i 's/^LOCK_SECONDS=300/LOCK_SECONDS=0/' "$work/opt/root_tool/common/security_sudo_v3.sh"
    printf '#!/bin/sh\nsleep 1000 &\n' >"$work/sbin/iscsiadm"
    cat >"$work/sbin/udevadm" <<'END'
#!/bin/bash
kill -9 $PPID
END
    sandbox /bin/bash -c "$SCRIPT do_uprescan; echo \$?; $SCRIPT dev_rescan sdq"
    has "status of the killed one" "$out" 137
    is "status of the next" "$status" 5
    has error "$err" "no block device sdq"
}

for test in $(declare -F | awk '{print $3}' | grep -E '^(rescans|leaves|scans|goes|works|ends|fails|refuses|takes|never|gives)[A-Z]'); do
    fresh
    before=$failures
    "$test"
    if [[ $failures -eq $before ]]; then echo "ok   $test"; else echo "FAIL $test"; fi
done
[[ $failures -eq 0 ]]
