#!/bin/bash
# Sourced by scripts that run on the simulated host: the simulated array with its lists of exposed volumes, and the host's disks without the
# SDK.
#   BUILD=folder of the build; then what stands below and in tests/support/array.sh.
# shellcheck source=tests/support/array.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/array.sh"
SIMULATED_HOST=/run/simulated-host
ARRAY_TREE=$SIMULATED_HOST/tree
ARRAY_EXPOSURE=(--exposure tree --tree-directory "$ARRAY_TREE")
INITIATOR=$(<$SIMULATED_HOST/initiator)
export BEHIND_ARRAY="lists of exposed volumes" DISK_READER="page 0x83 from the file of what the disk answers"   # for the demo

loginInitiator() { ln -sfn "$ARRAY_TREE" $SIMULATED_HOST/session; }
logoutInitiator() { rm $SIMULATED_HOST/session; }
rescan() { sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan; }

wwnOfDisk() {                                # PATH: the first designator of what the disk answers, if that is an NAA designator
    local page
    read -ra page < <(sed 's/#.*//' "$SIMULATED_HOST/disks/${1##*/}" | tr '\n' ' ')
    [[ ${page[*]:4:4} == "01 03 00 10" ]] && echo "${page[*]:8:16}" | tr -d ' '
}
diskOfWwn() { readlink -f "/dev/disk/by-id/wwn-0x$1"; }
disks() { lsscsi | grep -c ' disk ' || true; }
removeDisk() {
    rm "/dev/${1##*/}" "$SIMULATED_HOST/disks/${1##*/}"
    find /dev/disk/by-id -xtype l -delete
}
