#!/bin/bash
# Sourced by the array.sh of each host: starts the simulated array and talks to it without the SDK.
#   BUILD=folder of the build, INITIATOR, ARRAY_EXPOSURE=(flags of its exposure driver); then startArray, and what else is needed below.
ARRAY_DIR=${ARRAY_DIR:-/tmp/array}
ARRAY_USER="admin"
ARRAY_PASSWORD="host test 1"

startArray() {                               # [FLAG...]: leaves ARRAY_PID and ARRAY_PORT; its output goes to $ARRAY_DIR/log
    mkdir -p "$ARRAY_DIR"
    rm -f "$ARRAY_DIR/port"
    BREVAN_SIM_PASSWORD=$ARRAY_PASSWORD "$BUILD/bin/brevan-array-sim" --ca-file "$ARRAY_DIR/ca.pem" --port-file "$ARRAY_DIR/port" \
        --user "$ARRAY_USER" "${ARRAY_EXPOSURE[@]}" --iscsi-initiator "$INITIATOR" "$@" >"$ARRAY_DIR/log" 2>&1 &
    ARRAY_PID=$!
    for _ in {1..200}; do
        [[ ! -s $ARRAY_DIR/port ]] || break
        kill -0 "$ARRAY_PID" 2>/dev/null || { cat "$ARRAY_DIR/log" >&2; return 1; }
        sleep 0.05
    done
    ARRAY_PORT=$(<"$ARRAY_DIR/port")
}

stopArray() {                                # its exit status
    local status=0
    kill -TERM "$ARRAY_PID"
    wait "$ARRAY_PID" || status=$?
    return "$status"
}

# METHOD PATH [BODY]: one request through curl, below the device's base path; the reply on standard output. Certificates are verified.
api() {
    local header=()
    [[ ! -e $ARRAY_DIR/session ]] || header=(-H "@$ARRAY_DIR/session")
    curl -sS --globoff --max-time 20 --cacert "$ARRAY_DIR/ca.pem" -X "$1" "${header[@]}" ${3:+--data-binary "$3"} \
        -H 'Content-Type: application/json' -D "$ARRAY_DIR/headers" \
        "https://127.0.0.1:$ARRAY_PORT/deviceManager/rest/${ARRAY_DEVICE:-xxxx}$2"
}

field() {                                    # KEY: that text of the newest reply, whose records are flat
    [[ $reply =~ \"$1\":\ *\"([^\"]*)\" ]] && echo "${BASH_REMATCH[1]}"
}

apiOk() {                                    # METHOD PATH [BODY]: leaves the reply in $reply; fails unless the array did it
    reply=$(api "$@") || return 1
    [[ $reply =~ \"code\":\ *0[,}] ]] || { echo "$1 $2: $reply" >&2; return 1; }
}

apiLogin() {
    local token cookie
    rm -f "$ARRAY_DIR/session"
    ARRAY_DEVICE=""
    apiOk POST /sessions "{\"username\": \"$ARRAY_USER\", \"password\": \"$ARRAY_PASSWORD\", \"scope\": 0}" || return 1
    ARRAY_DEVICE=$(field deviceid)
    token=$(field iBaseToken)
    cookie=$(sed -n 's/^[Ss]et-[Cc]ookie: *\([^;]*\).*/\1/p' "$ARRAY_DIR/headers" | tr -d '\r')
    printf 'iBaseToken: %s\nCookie: %s\n' "$token" "$cookie" >"$ARRAY_DIR/session"
}
