#!/bin/bash
# adopt_session and session.sh as a user runs them, against a simulated array: adopt-session-test.sh BUILD
set -euo pipefail
BUILD=$1 PROGRAM=$1/bin/adopt_session
# shellcheck source=tests/examples/program-checks.sh
source "$(dirname "$0")/program-checks.sh"
session() { "$HERE/../../examples/session.sh" "$1" "${connection[@]}" --ca-file "$ARRAY_DIR/ca.pem" "${@:2}" 2>"$ERRORS"; }
adopt() { program "${connection[@]}" <<<"$opened"; }

startForExamples
opened=$(session open)
is "a session is three lines" "$(cut -d : -f 1 <<<"$opened" | tr '\n' ' ')" "deviceid iBaseToken cookie "
check "another process adopts it" adopt
check "and reads under it" grep -qE '^read +[1-9][0-9]* Ethernet ports ' "$WORK/output"
check "and again: it was left open" adopt
token=$(sed -n 's/^iBaseToken: //p' <<<"$opened")
cookie=$(sed -n 's/^cookie: //p' <<<"$opened")
check "the token is in no output" bash -c "! grep -qF -e '$token' -e '${cookie#*=}' '$WORK/output' '$ERRORS'"

check "the process that opened it ends it" session close <<<"$opened"
trouble "after that the array does not know it" 6 "127.0.0.1:$ARRAY_PORT does not take the session" "${connection[@]}" <<<"$opened"
trouble "no session on standard input" 2 "standard input has no session" "${connection[@]}" </dev/null
trouble "a line is missing" 2 "standard input has no session" "${connection[@]}" < <(head -n 2 <<<"$opened")
trouble "array not there" 4 "Check the array's address and port" --address 127.0.0.1 --port 1 <<<"$opened"
BREVAN_TRANSPORT_CONFIG="" trouble "certificate not trusted" 5 "Set ca_file" "${connection[@]}" <<<"$opened"
trouble "no address" 2 "--address is needed" <<<"$opened"
trouble "no literal address" 2 "the session cannot be adopted: Invalid ip address!" --address array.example <<<"$opened"

BREVAN_PASSWORD='quotes " and \ wrong' check "a wrong password is refused in one line" \
    bash -c "! '$HERE/../../examples/session.sh' open --address 127.0.0.1 --port $ARRAY_PORT --ca-file '$ARRAY_DIR/ca.pem' 2>'$ERRORS'"
check "with the array's reason" grep -qE '^session.sh: login refused: [A-Z]' "$ERRORS"
endChecks
