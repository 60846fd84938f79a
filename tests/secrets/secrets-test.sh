#!/bin/bash
# The examples as users run them and everything that can go wrong with an array, with secrets that can be searched for, and logs at level
# debug; then looks for the secrets in every file and every output. Runs on the simulated host: secrets-test.sh BUILD
set -euo pipefail
HOST=simulated BUILD=$1 PROGRAM=attach_volume
# shellcheck source=tests/examples/example.sh
source "$(dirname "$0")/../examples/example.sh"
CANARY=Canary7Q                              # every secret of ours holds this word; the array makes others, which the spy tells
ARRAY_PASSWORD=$CANARY-password
SAID=/tmp/said SEEN=/tmp/seen LOGS=/tmp/logs SESSIONS=/run/sessions.spy
mkdir $SAID /tmp/lib

useLogsAtDebug() {                           # the libraries once more, with settings of their own beside them
    cp -a "$BUILD"/lib/*.so* /tmp/lib
    printf '[log]\ndirectory = %s\n[run]\nlevel = debug\n[interface]\nlevel = debug\n' $LOGS >/tmp/lib/Brevan_API.ini
    export LD_LIBRARY_PATH=/tmp/lib BREVAN_SESSION_SPY=$SESSIONS
}

spied() { LD_PRELOAD="$LD_PRELOAD $BUILD/lib/libsession_spy.so" "$@"; }
run() {                                      # WHAT STATUS PROGRAM [ARGUMENT...]: all it says is kept
    local status=0
    spied "$BUILD/bin/$3" "${@:4}" >>"$SAID/$3" 2>&1 || status=$?
    is "$1" "$status" "$2"
    [[ $status == "$2" ]] || tail -n 5 "$SAID/$3"
}

runExamples() {
    local opened snapshot place=(--address 127.0.0.1 --port "$ARRAY_PORT")
    run "a LUN is attached" 0 attach_volume "${connection[@]}" --lun "$lun"
    run "it is detached" 0 attach_volume "${connection[@]}" --lun "$lun" --detach
    run "a LUN is created and attached" 0 attach_volume "${connection[@]}" --pool 0
    apiOk POST /snapshot "{\"NAME\": \"backup\", \"PARENTTYPE\": 11, \"PARENTID\": \"$lun\"}"
    snapshot=$(field ID)
    run "a snapshot is attached and read" 0 attach_snapshot "${connection[@]}" --snapshot "$snapshot"
    run "ports are listed" 0 list_ports "${place[@]}"
    opened=$("$BREVAN_EXAMPLES/session.sh" open "${place[@]}" --ca-file "$ARRAY_DIR/ca.pem")
    run "a session is adopted" 0 adopt_session "${place[@]}" <<<"$opened"
    "$BREVAN_EXAMPLES/session.sh" close "${place[@]}" --ca-file "$ARRAY_DIR/ca.pem" <<<"$opened"
    run "a session that is over is adopted" 6 adopt_session "${place[@]}" <<<"$opened"
    BREVAN_PASSWORD=$CANARY-wrong run "a wrong password is refused" 3 attach_volume "${connection[@]}" --lun "$lun"
    run "no array is there" 4 attach_volume "${connection[@]}" --lun "$lun" --port 1
    BREVAN_TRANSPORT_CONFIG="" run "the certificate is not trusted" 5 attach_volume "${connection[@]}" --lun "$lun"
}

# What was written anywhere but by the spy and by this test's own requests to the array.
searched() { find /tmp /run/simulated-host /dev/shm "$BUILD/lib/logs" -type f ! -path "$ARRAY_DIR/session" ! -path "$ARRAY_DIR/headers" ! -path $SEEN; }
findIn() { xargs -d '\n' grep -lF "$@" || true; }

ARRAY_EXPOSURE+=(--journal /tmp/journal)
BREVAN_EXAMPLES=$TESTS/../examples
useLogsAtDebug
startForExample
runExamples
run "all failures come about" 0 secrets_failures /tmp
stopArray

sort -u $SESSIONS >$SEEN
check "the sessions of all programs were seen" test "$(wc -l <$SEEN)" -ge 20
is "all of them are secrets of a length" "$(grep -cvE '^.{14,}$' $SEEN)" 0
check "the search finds what is there" grep -qF -e $CANARY -f $SEEN $SESSIONS
check "both logs of every program were written" test "$(find $LOGS -name '*.log' -size +0 | wc -l)" -ge 20
is "files with the word that all our secrets hold" "$(searched | findIn -e $CANARY)" ""
is "files with a token or cookie of the array" "$(searched | findIn -f $SEEN)" ""
endChecks
