#!/bin/bash
# Opens and ends a session with the array, for programs that share one (see adopt_session).
#   session.sh open --address IP [--port N] [--user NAME] [--scope N] [--ca-file FILE]
#       logs in with the password in BREVAN_PASSWORD and prints the session: deviceid, iBaseToken and cookie, a line each
#   session.sh close --address IP [--port N] [--ca-file FILE]
#       reads such lines from standard input and ends that session
# Neither password nor session is seen on a command line. Exit status: 0 done, 1 the array did not, 2 wrong usage.
set -euo pipefail

die() { echo "session.sh: $1" >&2; exit "${2:-1}"; }

parseArguments() {
    verb=${1:-} address="" port=8088 user=admin scope=0 trust=()
    case $verb in
    open | close) shift ;;
    --help | -h) sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"; exit 0 ;;
    *) die "the first argument is open or close; try --help" 2 ;;
    esac
    while [[ $# -gt 0 ]]; do
        [[ $# -ge 2 ]] || die "$1 lacks its value; try --help" 2
        case $1 in
        --address) address=$2 ;;
        --port) port=$2 ;;
        --user) user=$2 ;;
        --scope) scope=$2 ;;
        --ca-file) trust=(--cacert "$2") ;;
        *) die "$1 is no option; try --help" 2 ;;
        esac
        shift 2
    done
    [[ -n $address ]] || die "--address is needed; try --help" 2
    [[ $scope =~ ^[0-9]+$ && $port =~ ^[0-9]+$ ]] || die "--port and --scope take a number" 2
    [[ $address != *:* ]] || address="[$address]"
    rest=https://$address:$port/deviceManager/rest
}

quoted() {                                   # TEXT: as JSON text
    local text=${1//\\/\\\\}
    printf '"%s"' "${text//\"/\\\"}"
}

ask() { curl --silent --show-error --globoff --max-time 60 "${trust[@]}" "$@"; }

value() { sed -nE "s/.*\"$1\" *: *\"?([^\",}]*).*/\1/p" <<<"$2"; }   # KEY JSON

openSession() {
    local answer body
    [[ -n ${BREVAN_PASSWORD:-} ]] || die "set BREVAN_PASSWORD to the password of $user" 2
    answer=$(printf '{"username": %s, "password": %s, "scope": %d}' "$(quoted "$user")" "$(quoted "$BREVAN_PASSWORD")" "$scope" |
        ask --include --data-binary @- "$rest/xxxx/sessions") || die "the array at $address:$port gave no answer"
    answer=${answer//$'\r'/}
    body=${answer#*$'\n\n'}
    body=${body//$'\n'/ }
    [[ $(value code "$body") == 0 ]] || die "login refused: $(value description "$body")"
    printf 'deviceid: %s\niBaseToken: %s\n' "$(value deviceid "$body")" "$(value iBaseToken "$body")"
    sed -nE 's/^[Ss]et-[Cc]ookie: *([^;]*);.*/cookie: \1/p' <<<"${answer%%$'\n\n'*}"
}

closeSession() {
    local name text deviceId="" headers="" answer
    while IFS= read -r line; do
        name=${line%%: *} text=${line#*: }
        case $name in
        deviceid) deviceId=$text ;;
        iBaseToken) headers+="iBaseToken: $text"$'\n' ;;
        cookie) headers+="Cookie: $text"$'\n' ;;
        esac
    done
    [[ -n $deviceId ]] || die "standard input has no session; try --help" 2
    answer=$(ask --request DELETE --header @- "$rest/$deviceId/sessions" <<<"$headers") || die "the array at $address:$port gave no answer"
    [[ $(value code "${answer//$'\n'/ }") == 0 ]] || die "the session could not be ended: $(value description "${answer//$'\n'/ }")"
}

parseArguments "$@"
"${verb}Session"
