#!/bin/bash
# Sourced by test scripts: check WHAT COMMAND..., is WHAT GOT WANTED, trouble, and endChecks, which fails if any failed.
failures=0
report() {                                   # FAILED WHAT [DETAIL]
    if [[ $1 == 0 ]]; then echo "ok   $2"; else echo "FAIL $2${3:+: $3}"; failures=$((failures + 1)); fi
}
check() {
    local what=$1 status=0 output
    shift
    output=$("$@" 2>&1) || status=$?
    report "$status" "$what" "$output"
}
is() {                                       # WHAT GOT WANTED
    if [[ $2 == "$3" ]]; then report 0 "$1"; else report 1 "$1" "got '$2', wanted '$3'"; fi
}
# WHAT STATUS TEXT [ARGUMENT...]: the caller's function program, which writes standard error to $ERRORS, ends with that exit status and
# one line that says that.
trouble() {
    local what=$1 status=0
    program "${@:4}" || status=$?
    is "$what: exit status" "$status" "$2"
    is "$what: lines" "$(wc -l <"$ERRORS")" 1
    check "$what: the line says so" grep -qF -e "$3" "$ERRORS"
}
step() { echo "[$(cut -d ' ' -f 1 /proc/uptime) s] $*"; }
endChecks() { [[ $failures -eq 0 ]] || { echo "$failures checks failed"; exit 1; }; }
