#!/bin/bash
# A volume's way from the simulated array to a SCSI disk and back, without the SDK: requests by curl, disks seen by iscsiadm, lsscsi and
# sg_inq. Runs inside the kernel host: array-lio-test.sh BUILD
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/kernel_host/array.sh
source "$HERE/array.sh"
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"
CONFIG=/sys/kernel/config/target


startArray --settle 0
step "array started"
apiLogin
check "log in" test -n "$ARRAY_DEVICE"
loginInitiator && check "an initiator to which nothing is mapped logs in" true
is "no disk" "$(disks)" 0
is "the initiator is known" "$(apiOk GET "/iscsi_initiator/$INITIATOR" && field ISFREE)" true
step "initiator logged in"

lun=$(newLun first 2097152)
second=$(newLun second 32768)
wwn=$(wwnOfLun "$lun")
wwn2=$(wwnOfLun "$second")
check "the WWN is an NAA designator of type 6" grep -qxE '6[0-9a-f]{31}' <<<"$wwn"
mapToInitiator "$lun"
step "mapped"
is "mapped, not rescanned: no disk" "$(disks)" 0
check "rescan" rescan
is "rescanned: one disk" "$(disks)" 1
disk=$(diskOfWwn "$wwn")
is "its page 0x83 names the LUN's WWN" "$(wwnOfDisk "$disk")" "$wwn"
is "it has the LUN's size" "$(<"/sys/block/${disk##*/}/size")" 2097152
step "disk found"

join /lungroup/associate POST "$lunGroup" 11 "$second"
check "rescan" rescan
is "a second LUN: two disks" "$(disks)" 2
disk2=$(diskOfWwn "$wwn2")
is "its page 0x83 names the second WWN" "$(wwnOfDisk "$disk2")" "$wwn2"
head -c 1M /dev/urandom >/tmp/pattern
dd if=/tmp/pattern of="$disk2" bs=1M oflag=direct status=none
check "what is written to the disk is in its volume" cmp -n 1048576 /tmp/pattern "$ARRAY_DIR/volumes/$wwn2.img"

apiOk DELETE "/lungroup/associate?ID=$lunGroup&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=$lun"
is "unmapped: INQUIRY names nothing any more" "$(wwnOfDisk "$disk" 2>/dev/null)" ""
is "the other disk still answers" "$(wwnOfDisk "$disk2")" "$wwn2"
removeDisk "$disk"
check "rescan" rescan
is "the disk deleted on the host does not come back" "$(disks)" 1
join /lungroup/associate POST "$lunGroup" 11 "$lun"
check "rescan" rescan
is "mapped again: the same WWN is back" "$(wwnOfDisk "$(diskOfWwn "$wwn")")" "$wwn"
step "unmapped and mapped again"

iscsiadm -m node -u >/dev/null
status=0
stopArray || status=$?
is "the array ends on SIGTERM" "$status" 0
is "and leaves nothing in the kernel's target" "$(find $CONFIG/iscsi $CONFIG/core -mindepth 2 -name '6*' -o -name 'iqn*' | wc -l)" 0
step "done"
endChecks
