#!/bin/bash
# attach_volume as a user runs it: attach an existing LUN, attach it again, detach it; and every trouble with its exit status and its one
# line. Runs on a host for tests: attach-volume-test.sh kernel|simulated BUILD
set -euo pipefail
BUILD=$2
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/kernel_host/array.sh
source "$HERE/../${1}_host/array.sh"
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"

example() { "$BUILD/bin/attach_volume" "${connection[@]}" "$@" >/tmp/output 2>/tmp/errors; }
trouble() {                                  # WHAT STATUS TEXT [ARGUMENT...]: that exit status, and one line that says that
    local what=$1 status=0
    example "${@:4}" || status=$?
    is "$what: exit status" "$status" "$2"
    is "$what: lines" "$(wc -l </tmp/errors)" 1
    check "$what: the line says so" grep -qF -e "$3" /tmp/errors
}

startArray --settle 0
apiLogin
loginInitiator
apiOk POST /lun '{"NAME": "existing", "PARENTID": "0", "CAPACITY": 131072, "ALLOCTYPE": 1, "INITIALALLOCCAPACITY": 0}'
lun=$(field ID)
apiOk GET "/lun/$lun"
wwn=$(field WWN)
export BREVAN_PASSWORD=$ARRAY_PASSWORD BREVAN_TRANSPORT_CONFIG=/tmp/transport.ini
printf '[tls]\nca_file = %s\n' "$ARRAY_DIR/ca.pem" >"$BREVAN_TRANSPORT_CONFIG"
connection=(--address 127.0.0.1 --port "$ARRAY_PORT" --user "$ARRAY_USER" --initiator "$INITIATOR")

check "an existing LUN is attached" example --lun "$lun"
disk=$(sed -n 's/^disk *//p' /tmp/output)
is "its disk carries its WWN" "$(wwnOfDisk "$disk")" "$wwn"
check "attached again, it is found as it is" example --lun "$lun"
check "and told to be attached already" grep -qE '^attach +already: host ' /tmp/output
check "it is detached" example --lun "$lun" --detach
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
