#!/bin/bash
# Sourced by scripts that run inside the kernel host: the simulated array with the kernel's iSCSI target behind it, and the host's disks as
# other programs see them, without the SDK.
#   BUILD=folder of the build; then what stands below and in tests/support/array.sh.
# shellcheck source=tests/support/array.sh
source "$(dirname "${BASH_SOURCE[0]}")/../support/array.sh"
ARRAY_TARGET=iqn.2024-01.com.example:array
ARRAY_EXPOSURE=(--exposure lio --volume-directory "$ARRAY_DIR/volumes" --lio-target "$ARRAY_TARGET")
INITIATOR=$(sed -n 's/^InitiatorName=//p' /etc/iscsi/initiatorname.iscsi)
export BEHIND_ARRAY="the kernel's iSCSI target" DISK_READER="sg_inq from the disk"   # for the demo

loginInitiator() {
    iscsiadm -m node -o new -T "$ARRAY_TARGET" -p 127.0.0.1:3260,1 >/dev/null && iscsiadm -m node -T "$ARRAY_TARGET" --login >/dev/null
}
logoutInitiator() { iscsiadm -m session -u >/dev/null; }

rescan() { sudo -n /opt/root_tool/common/security_sudo_v3.sh do_uprescan; }

wwnOfDisk() {                                # PATH: the NAA designator of its page 0x83, by sg_inq
    sg_inq -p 0x83 "$1" | sed -n 's/^ *\[0x\([0-9a-f]\{32\}\)\]$/\1/p' | head -n 1
}
diskOfWwn() { readlink -f "/dev/disk/by-id/wwn-0x$1"; }
disks() { lsscsi | grep -c ' disk ' || true; }
removeDisk() { echo 1 >"/sys/block/${1##*/}/device/delete"; }

# Objects of the array, made without the SDK.
create() { apiOk POST "$1" "$2" && field ID; }           # PATH BODY: prints the new object's ID
join() {                                     # OWNER-PATH METHOD OWNER-ID TYPE ID
    apiOk "$2" "$1" "{\"ID\": \"$3\", \"ASSOCIATEOBJTYPE\": $4, \"ASSOCIATEOBJID\": \"$5\"}"
}
newLun() { create /lun "{\"NAME\": \"$1\", \"PARENTID\": \"0\", \"CAPACITY\": $2, \"ALLOCTYPE\": 1, \"INITIALALLOCCAPACITY\": 0}"; }
wwnOfLun() { apiOk GET "/lun/$1" && field WWN; }
mapToInitiator() {                           # LUN: builds the whole chain; leaves $lunGroup
    local owner hostGroup view
    owner=$(create /host '{"NAME": "host", "OPERATIONSYSTEM": 0}')
    apiOk PUT "/iscsi_initiator/$INITIATOR" "{\"ID\": \"$INITIATOR\", \"PARENTTYPE\": 21, \"PARENTID\": \"$owner\"}"
    hostGroup=$(create /hostgroup '{"NAME": "hosts"}')
    lunGroup=$(create /lungroup/ '{"NAME": "luns"}')
    view=$(create /mappingview '{"NAME": "view"}')
    join /hostgroup/associate POST "$hostGroup" 21 "$owner"
    join /lungroup/associate POST "$lunGroup" 11 "$1"
    join /mappingview/create_associate PUT "$view" 14 "$hostGroup"
    join /mappingview/create_associate PUT "$view" 256 "$lunGroup"
}
