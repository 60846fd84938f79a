#!/bin/bash
# Sourced by the tests of examples that need no disks: a simulated array of their own, and how a program's trouble is checked.
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

program() { "$PROGRAM" "$@" >"$WORK/output" 2>"$WORK/errors"; }
trouble() {                                  # WHAT STATUS TEXT [ARGUMENT...]: that exit status, and one line that says that
    local what=$1 status=0
    program "${@:4}" || status=$?
    is "$what: exit status" "$status" "$2"
    is "$what: lines" "$(wc -l <"$WORK/errors")" 1
    check "$what: the line says so" grep -qF -e "$3" "$WORK/errors"
}
noSecretsSeen() {                            # nothing that the program wrote holds the password
    check "the password is in no output" bash -c "! grep -qF -- '$ARRAY_PASSWORD' '$WORK/output' '$WORK/errors'"
}
