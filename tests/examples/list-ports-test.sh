#!/bin/bash
# list_ports as a user runs it, against a simulated array: list-ports-test.sh BUILD
set -euo pipefail
BUILD=$1 PROGRAM=$1/bin/list_ports
# shellcheck source=tests/examples/program-checks.sh
source "$(dirname "$0")/program-checks.sh"

arraysPorts() {                              # PATH TYPE: "TYPE ID" of each, as the array itself tells it
    apiOk GET "$1" && grep -oP '"ID": ?"\K[^"]+' <<<"$reply" | sed "s/^/$2 /"
}

startForExamples
apiLogin
check "the ports are listed" program "${connection[@]}"
is "every port of the array has its line" "$(awk 'NR > 1 {print $1, $2}' "$WORK/output")" \
    "$(arraysPorts /FC_PORT FC; arraysPorts /FCoE_PORT FCoE; arraysPorts /ETH_PORT Ethernet)"
is "the columns are named" "$(sed 's/  */ /g; q' "$WORK/output")" "TYPE ID NAME LOCATION HEALTH STATE SPEED ADDRESS"
speed=$(awk 'NR == 1 {print index($0, "SPEED")}' "$WORK/output")
is "all speeds stand below each other" \
    "$(tail -n +2 "$WORK/output" | cut -c "$speed"- | grep -cvE '^([0-9]+ [GM]bit/s|-)( |$)' || true)" 0
check "an FC port has its speed" grep -qE '^FC .* 16 Gbit/s +[0-9a-f]{16}$' "$WORK/output"
check "a port that is down says so" grep -qE ' normal +down ' "$WORK/output"
check "--help goes to standard output" bash -c "'$PROGRAM' --help | grep -q '^usage: list_ports'"
noSecretsSeen

BREVAN_PASSWORD=wrong trouble "wrong password" 3 "Login device fail,err msg:" "${connection[@]}"
trouble "array not there" 4 "Check the array's address and port" --address 127.0.0.1 --port 1
BREVAN_TRANSPORT_CONFIG="" trouble "certificate not trusted" 5 "Set ca_file" "${connection[@]}"
trouble "no address" 2 "--address is needed"
trouble "unknown option" 2 "--pool is no option" "${connection[@]}" --pool 1
endChecks
