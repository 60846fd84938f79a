#!/bin/bash
# What the library costs beside a bare libcurl handle, against nginx that plays the array with files: the server is not what is measured.
#   bench/sdk-bench.sh FOLDER        FOLDER: a build with the target benchmarks
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"
BUILD=${1:?the folder of the build}
LUNS=1000
work=$(mktemp -d)
# shellcheck source=bench/web.sh
source "$TOP/bench/web.sh"
trap 'stopProcesses $web; rm -rf "$work"' EXIT

record() {                                   # ID
    printf '{"data":{"ID":"%s","NAME":"volume_%s","PARENTID":"0","PARENTNAME":"pool0","HEALTHSTATUS":"1","RUNNINGSTATUS":"2",' "$1" "$1"
    printf '"DESCRIPTION":"","ALLOCTYPE":"1","SECTORSIZE":"512","CAPACITY":"2097152","ALLOCCAPACITY":"2048","THINCAPACITYUSAGE":"80",'
    printf '"EXPOSEDTOINITIATOR":"false","WWN":"602b7e4492986b91%016d","OWNINGCONTROLLER":"B","WORKINGCONTROLLER":"B",' "$1"
    printf '"ISADD2LUNGROUP":"false"},"error":{"code":0,"description":"0"}}'
}

makeArray() {                                # the files that nginx serves
    local device=$work/www/deviceManager/rest/1 id
    mkdir -p "$device/lun"
    for ((id = 10; id < 10 + LUNS; id++)); do record $id >"$device/lun/$id"; done
    { printf '{"data":[{"ID":"10"}'; seq -f ',{"ID":"%.0f"}' -s '' 11 $((9 + LUNS)); printf '],"error":{"code":0,"description":"0"}}'; } |
        tr -d '\n' >"$device/lun/associate"
}

LOCATIONS='location = /deviceManager/rest/xxxx/sessions {
    COUNT add_header Set-Cookie "session=c; Path=/; Secure; HttpOnly";
    return 200 "{\"data\":{\"deviceid\":\"1\",\"iBaseToken\":\"t\"},\"error\":{\"code\":0,\"description\":\"0\"}}"; }
location = /deviceManager/rest/1/lun/10 { COUNT }'

# The libraries once more, so that they find log settings of their own: with "off" for no logs, or "info" as shipped.
client() {                                   # LEVEL FIGURES
    local lib=$work/lib-$1
    mkdir -p "$lib"
    cp -a "$BUILD"/lib/*.so* "$lib"
    printf '[log]\ndirectory = %s\n[run]\nlevel = %s\n[interface]\nlevel = %s\n' "$lib/logs" "$1" "$1" >"$lib/Brevan_API.ini"
    BREVAN_TRANSPORT_CONFIG=$work/transport.ini LD_LIBRARY_PATH=$lib "$BUILD/bench/sdk_client" "$2" "$web_port" "$web_ca"
}

connections() {                              # of a login and the read after it, as the server has counted them
    : >"$work/access.log"
    client off handshakes
    sleep 0.2
    printf 'connections, each with a TLS handshake, of a login and a getLun\t%s\t1\tconnections\t<= 1\n' "$(sort -u "$work/access.log" | wc -l)"
}

serverLimit() {                              # what the server can do, as wrk sees it over so many connections
    local connections
    for connections in 1 2 4 8 16; do
        wrk -t$((connections < 2 ? 1 : 2)) -c$connections -d2s "https://127.0.0.1:$web_port$READ" >"$work/wrk.log" || die "wrk: $(<"$work/wrk.log")"
        printf '#limit\t%s\t%s\n' $connections "$(sed -n 's/^Requests\/sec: *//p' "$work/wrk.log")"
        [[ $connections -ne 8 ]] || sed -n 's/^Requests\/sec: *\(.*\)/# wrk with 8 connections, the limit of the server beside getLun with 8 threads: \1 requests\/s./p' "$work/wrk.log"
    done
}

makeArray
READ=/deviceManager/rest/1/lun/10
web_workers=1                                # so that both sides of a comparison are served by the same one
startWeb $READ "${LOCATIONS//COUNT/access_log $work/access.log connections;}"
printf '[tls]\nca_file = %s\n' "$web_ca" >"$work/transport.ini"
connections
stopProcesses "$web"
startWeb $READ "${LOCATIONS//COUNT/}"
client off single
client info logged
stopProcesses "$web"
web_workers=2
startWeb $READ "${LOCATIONS//COUNT/}"
client off threads
serverLimit
