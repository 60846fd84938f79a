#!/bin/bash
# Sourced by the tests of examples that need no disks: a simulated array of their own, and checks of what a program says.
#   BUILD=folder of the build; then startForExamples, and at the end endExamples.
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
WORK=$(mktemp -d)
ARRAY_DIR=$WORK/array ARRAY_EXPOSURE=() INITIATOR=iqn.2020-01.lab:host
# shellcheck source=tests/support/array.sh
source "$HERE/../support/array.sh"
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"
endExamples() { [[ -z ${ARRAY_PID:-} ]] || stopArray || true; rm -rf "$WORK"; }
trap endExamples EXIT

startForExamples() {                         # leaves in $connection where the array is
    startArray --settle 0
    export BREVAN_PASSWORD=$ARRAY_PASSWORD BREVAN_TRANSPORT_CONFIG=$WORK/transport.ini
    printf '[tls]\nca_file = %s\n' "$ARRAY_DIR/ca.pem" >"$BREVAN_TRANSPORT_CONFIG"
    # shellcheck disable=SC2034  # for the caller
    connection=(--address 127.0.0.1 --port "$ARRAY_PORT")
}

ERRORS=$WORK/errors
program() { "$PROGRAM" "$@" >"$WORK/output" 2>"$ERRORS"; }
noSecretsSeen() {                            # nothing that the program wrote holds the password
    check "the password is in no output" bash -c "! grep -qF -- '$ARRAY_PASSWORD' '$WORK/output' '$ERRORS'"
}
