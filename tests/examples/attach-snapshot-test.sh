#!/bin/bash
# attach_snapshot as a backup runs it: attach a snapshot, read its first block, detach it, also after every trouble. Runs on a host for
# tests: attach-snapshot-test.sh kernel|simulated BUILD
set -euo pipefail
HOST=$1 BUILD=$2 PROGRAM=attach_snapshot
# shellcheck source=tests/examples/example.sh
source "$(dirname "$0")/example.sh"

writeToLun() {                               # TEXT: on the LUN's own disk, which is taken away again
    local disk
    PROGRAM=attach_volume program --lun "$lun"
    disk=$(readlink -f "$(result disk)")
    echo "$1" | dd of="$disk" conv=notrunc,fsync status=none
    PROGRAM=attach_volume program --lun "$lun" --detach
    removeDisk "$disk"
}

newSnapshot() { apiOk POST /snapshot "{\"NAME\": \"$1\", \"PARENTTYPE\": 11, \"PARENTID\": \"$lun\"}" && field ID; }

mapByHand() {                                # SNAPSHOT: into the mapping view that the first attach has left; its group: $byHand
    apiOk POST /lungroup/ '{"NAME": "by_hand"}'
    byHand=$(field ID)
    apiOk POST /lungroup/associate "{\"ID\": \"$byHand\", \"ASSOCIATEOBJTYPE\": 27, \"ASSOCIATEOBJID\": \"$1\"}"
    apiOk GET /mappingview
    apiOk PUT /mappingview/create_associate "{\"ID\": \"$(field ID)\", \"ASSOCIATEOBJTYPE\": 256, \"ASSOCIATEOBJID\": \"$byHand\"}"
}

startForExample
[[ $HOST == simulated ]] || writeToLun "data to back up!"
snapshot=$(newSnapshot nightly)
wwn=$(wwnOf "/SNAPSHOT/$snapshot")
block="volume ${wwn: -8},"                     # on the simulated host every volume has a first block that names it
[[ $HOST == simulated ]] || block="data to back up!"

check "a snapshot is read" program --snapshot "$snapshot"
is "its WWN is the array's" "$(result wwn)" "$wwn"
check "its first block was read" grep -qE "^read +512 bytes: .*$block" /tmp/output
is "it is in no LUN group any more" "$(groupOfSnapshot "$snapshot")" ""
disk=$(readlink -f "$(result disk)")
if [[ $HOST == simulated ]]; then              # a disk that can be opened, but not read
    rm "$disk"
    mkdir "$disk"
    trouble "disk not read" 11 "cannot read the first block of /dev/disk/by-id/../../${disk##*/}: " --snapshot "$snapshot"
    is "disk not read: it is detached" "$(groupOfSnapshot "$snapshot")" ""
    rmdir "$disk"
else
    removeDisk "$disk"
fi

mapByHand "$snapshot"
check "one that is attached already is read" program --snapshot "$snapshot"
check "and told to be attached already" grep -qE "^attach +already: snapshot $snapshot" /tmp/output
is "its disk carries its WWN" "$(wwnOfDisk "$(result disk)")" "$wwn"
is "and it stays attached" "$(groupOfSnapshot "$snapshot")" "$byHand"

trouble "unknown snapshot" 6 "the array has no snapshot 999999; choose one that it lists" --snapshot 999999
trouble "unknown initiator" 7 "the array has no iSCSI initiator iqn.nobody" --snapshot "$snapshot" --initiator iqn.nobody
trouble "wrong usage" 2 "--address, --initiator and --snapshot are needed; try --help"
other=$(newSnapshot hourly)
logoutInitiator                              # nobody brings the disk
trouble "no disk" 9 "this host has no disk of snapshot $other: no disk of this host carries the WWN" --snapshot "$other"
is "no disk: it is detached" "$(groupOfSnapshot "$other")" ""
endChecks
