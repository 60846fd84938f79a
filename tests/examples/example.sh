#!/bin/bash
# Sourced by tests of an example program: HOST=kernel|simulated, BUILD, PROGRAM; then startForExample, program and what the host's
# array.sh and checks.sh have.
TESTS=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=tests/kernel_host/array.sh
source "$TESTS/${HOST}_host/array.sh"
# shellcheck source=tests/support/checks.sh
source "$TESTS/support/checks.sh"

# shellcheck disable=SC2034  # lun is the caller's
# An array to which this host is logged in, with a LUN, whose ID is left in $lun.
startForExample() {
    startArray --settle 0
    apiLogin
    loginInitiator
    apiOk POST /lun '{"NAME": "existing", "PARENTID": "0", "CAPACITY": 131072, "ALLOCTYPE": 1, "INITIALALLOCCAPACITY": 0}'
    lun=$(field ID)
    export BREVAN_PASSWORD=$ARRAY_PASSWORD BREVAN_TRANSPORT_CONFIG=/tmp/transport.ini
    printf '[tls]\nca_file = %s\n' "$ARRAY_DIR/ca.pem" >"$BREVAN_TRANSPORT_CONFIG"
    connection=(--address 127.0.0.1 --port "$ARRAY_PORT" --user "$ARRAY_USER" --initiator "$INITIATOR")
}

wwnOf() { apiOk GET "$1" && field WWN; }      # /lun/ID or /SNAPSHOT/ID
groupOfSnapshot() {                          # ID: the ID of its LUN group; nothing where it is not mapped
    apiOk GET "/lungroup/associate?ASSOCIATEOBJTYPE=27&ASSOCIATEOBJID=$1" || echo "unknown"
    field ID
}
ERRORS=/tmp/errors
program() { "$BUILD/bin/$PROGRAM" "${connection[@]}" "$@" >/tmp/output 2>$ERRORS; }
result() { sed -n "s/^$1 *//p" /tmp/output; }  # disk or wwn, as the program has printed it
