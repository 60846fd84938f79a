#!/bin/bash
# The part of scripts/demo.sh that runs on the host for tests: demo-on-host.sh kernel|simulated BUILD BEGIN
# BEGIN: when the demo began, in seconds since 1970. What is particular to the host stands in its array.sh.
set -euo pipefail
KIND=$1 BUILD=$2 BEGIN=$3
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tests/kernel_host/array.sh
source "$HERE/../tests/${KIND}_host/array.sh"

say() { local now; printf -v now '%(%s)T' -1; echo "[$((now - BEGIN)) s] $*"; }
die() { echo "demo: $1" >&2; exit 1; }

# Leaves the disk's path in $disk, the LUN's ID in $lun and what the example says of its WWN in $wwn; shows all its other lines.
runExample() {
    local line step status
    export BREVAN_TRANSPORT_CONFIG=$ARRAY_DIR/transport.ini BREVAN_PASSWORD=$ARRAY_PASSWORD
    printf '[tls]\nca_file = %s\n' "$ARRAY_DIR/ca.pem" >"$BREVAN_TRANSPORT_CONFIG"
    disk="" lun="" wwn=""
    while IFS= read -r line; do
        step=${line%% *}
        case $step in
        disk) disk=${line##* } ;;
        wwn) wwn=${line##* } ;;
        status) status=${line##* } ;;
        *) echo "$line"; [[ $step != create ]] || { lun=${line#*LUN }; lun=${lun%% *}; } ;;
        esac
    done < <("$BUILD/bin/attach_volume" --address 127.0.0.1 --port "$ARRAY_PORT" --user "$ARRAY_USER" --initiator "$INITIATOR" \
        --host-ip 127.0.0.1 2>&1; echo "status $?")
    [[ $status == 0 ]] || die "the example ended with status $status"
    [[ -n $disk && -n $lun && -n $wwn ]] || die "the example did not print LUN, disk and WWN"
}

arraysWwn() {                                # as the array itself tells it, asked without the SDK
    apiLogin >/dev/null && apiOk GET "/lun/$lun" && field WWN
}

say "simulated array: starting, with $BEHIND_ARRAY behind it"
startArray --port 8088 || die "the simulated array did not start"
say "iSCSI initiator $INITIATOR: logging in to it"
loginInitiator || die "the initiator could not log in"
say "attach_volume"
runExample
say "reading the WWN back: $DISK_READER, curl from the array"
page=$(wwnOfDisk "$disk")
array=$(arraysWwn) || die "the array did not tell the WWN of LUN $lun"
[[ -n $page && $page == "$array" && $page == "$wwn" ]] ||
    die "page 0x83 of $disk says '$page', the array '$array', the example '$wwn'"
say "all three agree"
printf '%-10s%s\n' disk "$disk" wwn "$page"
