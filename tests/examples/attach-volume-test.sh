#!/bin/bash
# attach_volume as a user runs it: attach an existing LUN, attach it again, detach it; and every trouble with its exit status and its one
# line. Runs on a host for tests: attach-volume-test.sh kernel|simulated BUILD
set -euo pipefail
HOST=$1 BUILD=$2 PROGRAM=attach_volume
# shellcheck source=tests/examples/example.sh
source "$(dirname "$0")/example.sh"

startForExample
wwn=$(wwnOf "/lun/$lun")
check "an existing LUN is attached" program --lun "$lun"
disk=$(result disk)
is "its disk carries its WWN" "$(wwnOfDisk "$disk")" "$wwn"
check "attached again, it is found as it is" program --lun "$lun"
check "and told to be attached already" grep -qE '^attach +already: host ' /tmp/output
check "it is detached" program --lun "$lun" --detach
is "nothing is exposed any more" "$(apiOk GET "/lun/$lun" && field EXPOSEDTOINITIATOR)" false
removeDisk "$(readlink -f "$disk")"
step "main job done"

trouble "unknown LUN" 6 "the array has no LUN 999999; choose one that it lists" --lun 999999
trouble "unknown initiator" 7 "the array has no iSCSI initiator iqn.nobody; create it there" --lun "$lun" --initiator iqn.nobody
BREVAN_PASSWORD=wrong trouble "wrong password" 3 "cannot log in to 127.0.0.1:$ARRAY_PORT: Login device fail,err msg:"
trouble "array not there" 4 "Check the array's address and port" --port 1
BREVAN_TRANSPORT_CONFIG="" trouble "certificate not trusted" 5 "Set ca_file, server_name or a pin in transport.ini"
trouble "no such pool" 11 "cannot create a LUN in pool 77" --pool 77
trouble "wrong usage" 2 "--lun is no option, or lacks its value; try --help" --lun
now=$(date +%s)                              # somebody else has taken the names of the coming seconds
for second in {0..9}; do apiOk POST /lungroup/ "{\"NAME\": \"lungroup_$((now + second))\"}"; done
trouble "attach failed" 8 "LUN $lun could not be attached: get error response, error code:" --lun "$lun"
sleep $((now + 10 - $(date +%s)))
logoutInitiator                              # nobody brings the disk
trouble "no disk" 9 "this host has no disk of LUN $lun: no disk of this host carries the WWN \"$wwn\"" --lun "$lun"
endChecks
