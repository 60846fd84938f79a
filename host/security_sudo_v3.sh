#!/bin/bash -p
# The one thing that the library does as root: look for SCSI disks that came or changed. Installed as
# /opt/root_tool/common/security_sudo_v3.sh and run through sudo.
#   security_sudo_v3.sh do_uprescan        rescan all iSCSI sessions and all other SCSI hosts, then wait for udev
#   security_sudo_v3.sh dev_rescan NAME    read size and identity of one SCSI disk (sdc) again
# Exit status: 0 done, 2 wrong arguments, 3 not root, 4 another rescan does not end, 5 no such SCSI disk, 6 the rescan failed.
set -euf

# Nothing of the caller's environment has an effect here (-p above: no functions, no BASH_ENV, no SHELLOPTS) or reaches
# what this script starts.
PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C
clean() { /usr/bin/env -i PATH="$PATH" LC_ALL=C "$@"; }
umask 077
cd /

LOCK=/run/brevan-rescan.lock
LOCK_SECONDS=300 ISCSI_SECONDS=120 SETTLE_SECONDS=60

die() {                                      # STATUS MESSAGE
    printf 'security_sudo_v3.sh: %s\n' "$2" >&2
    exit "$1"
}

lockOut() {                                  # one rescan at a time, whoever asks; the lock ends with this process
    exec 9>"$LOCK" || die 6 "cannot open $LOCK"
    clean flock -w "$LOCK_SECONDS" 9 || die 4 "another rescan holds $LOCK for more than $LOCK_SECONDS s"
}

list() {                                     # GLOB: the names that match it, without their folder
    local path
    set +f
    for path in $1; do [ ! -e "$path" ] || printf '%s\n' "${path##*/}"; done
    set -f
}

rescanSessions() {                           # leaves in iscsiHosts the hosts that are done: those of the sessions
    local sessions
    mapfile -t sessions < <(list '/sys/class/iscsi_session/session*')
    [ "${#sessions[@]}" -gt 0 ] || return 0
    # Without descriptor 9: a daemon that iscsiadm may start would hold the lock for ever.
    if clean timeout -k 5 "$ISCSI_SECONDS" iscsiadm -m session --rescan >/dev/null 9>&-; then
        echo "iSCSI sessions rescanned: ${sessions[*]}"
        mapfile -t iscsiHosts < <(list '/sys/class/iscsi_host/host*')
    else
        echo "iscsiadm could not rescan the iSCSI sessions; their SCSI hosts are scanned instead" >&2
        failed=1
    fi
}

scanHosts() {
    local hosts host scanned=()
    mapfile -t hosts < <(list '/sys/class/scsi_host/host*')
    for host in "${hosts[@]}"; do
        [[ " ${iscsiHosts[*]} " != *" $host "* ]] || continue
        if { echo "- - -" >"/sys/class/scsi_host/$host/scan"; } 2>/dev/null; then
            scanned+=("$host")
        else
            echo "SCSI host $host could not be scanned" >&2
            failed=1
        fi
    done
    echo "SCSI hosts scanned: ${scanned[*]:-none}"
}

do_uprescan() {
    failed=0 iscsiHosts=()
    rescanSessions
    scanHosts
    clean udevadm settle --timeout="$SETTLE_SECONDS" 9>&- || { echo "udev did not settle in $SETTLE_SECONDS s" >&2; failed=1; }
    [ "$failed" = 0 ] || die 6 "the rescan is not complete"
}

dev_rescan() {                               # NAME
    [ -d "/sys/block/$1" ] || die 5 "there is no block device $1"
    [ -e "/sys/block/$1/device/rescan" ] || die 5 "$1 is no SCSI disk"
    { echo 1 >"/sys/block/$1/device/rescan"; } 2>/dev/null || die 6 "$1 could not be rescanned"
    echo "SCSI disk rescanned: $1"
}

case "$#:${1:-}" in
1:do_uprescan | 2:dev_rescan) ;;
*) die 2 "use: security_sudo_v3.sh do_uprescan | dev_rescan NAME" ;;
esac
if [ "$1" = dev_rescan ] && ! [[ $2 =~ ^[a-z]+[0-9a-z]*$ && ${#2} -le 31 ]]; then
    die 2 "a device name is letters a to z, then letters and digits, such as sdc"
fi
[ "$EUID" = 0 ] || die 3 "this must run as root: sudo /opt/root_tool/common/security_sudo_v3.sh $1"
lockOut
"$@"
