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
array="" web=""

cleanUp() {
    local process
    for process in $array $web; do
        kill "$process" 2>/dev/null || continue
        wait "$process" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap cleanUp EXIT

waitFor() {                                  # WHAT COMMAND...: until the command succeeds
    local tries
    for tries in {1..200}; do "${@:2}" >/dev/null 2>&1 && return; sleep 0.05; done
    die "$1 did not begin to serve ($tries tries; logs: $(tail -n 3 "$work"/*.log))"
}

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

freePort() {                                 # one on which nobody answers
    local port
    while port=$((20000 + RANDOM % 10000)); (: >"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
    echo "$port"
}

# A certificate of the same kind and key type as the array's, and replies of the same size.
startWeb() {
    local port user=""
    port=$(freePort)
    [[ $EUID -ne 0 ]] || user="user root;"
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=127.0.0.1 \
        -addext subjectAltName=IP:127.0.0.1 -keyout "$work/key.pem" -out "$work/web.pem" 2>"$work/openssl.log"
    cat >"$work/nginx.conf" <<END
daemon off; worker_processes 2; pid $work/nginx.pid; error_log $work/nginx-errors.log; $user
events { worker_connections 2048; }
http {
    access_log off; default_type application/json; keepalive_requests 100000000; keepalive_timeout 600; sendfile on;
    client_body_temp_path $work/t1; proxy_temp_path $work/t2; fastcgi_temp_path $work/t3; uwsgi_temp_path $work/t4; scgi_temp_path $work/t5;
    server { listen 127.0.0.1:$port ssl; ssl_certificate $work/web.pem; ssl_certificate_key $work/key.pem; root $work/www; }
}
END
    mkdir "$work/www"
    cp "$work/record.json" "$work/www/record.json"
    nginx -e "$work/nginx-errors.log" -c "$work/nginx.conf" >"$work/nginx.log" 2>&1 &
    web=$!
    file=https://127.0.0.1:$port/record.json
    waitFor nginx curl -sS --fail --cacert "$work/web.pem" "$file"
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
startWeb
compare
peakMemory
