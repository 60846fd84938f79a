#!/bin/bash
# How many single reads a second the simulated array answers over 500 kept-alive TLS connections, beside nginx that serves a file of
# the same size to the same load, in turns; and how much memory the array has taken at its peak.
#   bench/load-bench.sh FOLDER       FOLDER: a build with bin/brevan-array-sim
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

BUILD=${1:?the folder of the build}
CONNECTIONS=500
SECONDS_EACH=5
ROUNDS=3
MOST_MIB=256
DEVICE=/deviceManager/rest/210000000001
work=$(mktemp -d)
array=""
# shellcheck source=bench/web.sh
source "$TOP/bench/web.sh"
# shellcheck disable=SC2086
trap 'stopProcesses $array $web; rm -rf "$work"' EXIT

startArray() {
    BREVAN_SIM_PASSWORD=secret "$BUILD/bin/brevan-array-sim" --ca-file "$work/ca.pem" --port-file "$work/port" >"$work/array.log" 2>&1 &
    array=$!
    waitFor "the array" test -s "$work/port"
    arrayUrl=https://127.0.0.1:$(<"$work/port")
}

textOf() {                                   # KEY JSON: the value of that key
    local rest=${2#*"\"$1\":\""}
    echo "${rest%%\"*}"
}

logIn() {                                    # leaves the headers of a session in $token and $cookie
    local reply
    reply=$(curl -sS -D "$work/headers" --cacert "$work/ca.pem" -d '{"username":"admin","password":"secret","scope":0}' \
        "$arrayUrl/deviceManager/rest/xxxx/sessions")
    token="iBaseToken: $(textOf iBaseToken "$reply")"
    cookie="Cookie: $(sed -n 's/^Set-Cookie: \([^;]*\);.*/\1/p' "$work/headers")"
}

askArray() { curl -sS --fail --cacert "$work/ca.pem" -H "$token" -H "$cookie" "$@"; }

makeLun() {                                  # leaves the URL of its record in $lun
    local reply
    reply=$(askArray -d '{"NAME":"lun","PARENTID":"0","CAPACITY":2097152}' "$arrayUrl$DEVICE/lun")
    lun=$arrayUrl$DEVICE/lun/$(textOf ID "$reply")
    askArray "$lun" >"$work/record.json"
    grep -q '"code":0' "$work/record.json" || die "the array did not answer: $(<"$work/record.json")"
}

startWebOfRecord() {                         # replies of the same size
    mkdir "$work/www"
    cp "$work/record.json" "$work/www/record.json"
    startWeb /record.json
    file=https://127.0.0.1:$web_port/record.json
}

load() {                                     # URL: prints the requests a second; any error of a client or a reply ends the benchmark
    wrk -t2 -c"$CONNECTIONS" -d"${SECONDS_EACH}s" --timeout 10s -H "$token" -H "$cookie" "$1" >"$work/wrk.log" || die "wrk: $(<"$work/wrk.log")"
    ! grep -E 'Socket errors|Non-2xx' "$work/wrk.log" >&2 || die "not every request was answered"
    sed -n 's/^Requests\/sec: *//p' "$work/wrk.log"
}

median() { sort -n | sed -n "$(((ROUNDS + 1) / 2))p"; }

compare() {
    local round
    for ((round = 0; round < ROUNDS; round++)); do
        load "$lun" >>"$work/array.figures"
        load "$file" >>"$work/web.figures"
    done
    askArray "$lun" | cmp -s "$work/record.json" - || die "the array's answer has changed"
    printf 'single reads over %s connections, beside nginx\t%s\t%s\trequests/s\t>= 0.3\n' "$CONNECTIONS" \
        "$(median <"$work/array.figures")" "$(median <"$work/web.figures")"
}

peakMemory() {
    printf 'peak memory of the array under that load\t%s\t%s\tMiB\t<= 1\n' \
        "$(awk '/^VmHWM:/ { printf "%.1f", $2 / 1024 }' "/proc/$array/status")" "$MOST_MIB"
}

startArray
logIn
makeLun
startWebOfRecord
compare
peakMemory
