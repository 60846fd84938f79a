#!/bin/bash
# Compares the binary interface of libbrevan.so with the one that applications were built against, which is kept in
# libbrevan.abi: abi-test.sh LIBRARY INCLUDE-FOLDER
# After an intended change: abi-test.sh --accept LIBRARY INCLUDE-FOLDER writes it anew (docs/binary-interface.md).
set -euo pipefail
accept=""
if [[ ${1:-} == --accept ]]; then accept=yes; shift; fi
[[ $# -eq 2 ]] || { echo "use: abi-test.sh [--accept] LIBRARY INCLUDE-FOLDER" >&2; exit 2; }
LIBRARY=$1 INCLUDE=$2
KEPT=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/libbrevan.abi

if ! readelf -S "$LIBRARY" | grep -q '\.debug_info'; then
    echo "$LIBRARY has no debug information, from which its interface is read" >&2
    exit 2
fi
now=$(mktemp)
trap 'rm -f "$now"' EXIT
# Without the folders and line numbers of whoever builds it, and without the types that no header shows.
abidw --headers-dir "$INCLUDE" --drop-private-types --exported-interfaces-only --type-id-style hash \
    --no-corpus-path --no-comp-dir-path --no-show-locs --out-file "$now" "$LIBRARY"
if [[ -n $accept ]]; then
    cat "$now" >"$KEPT"
    echo "written: $KEPT"
    exit 0
fi
status=0
abidiff --no-show-locs "$KEPT" "$now" || status=$?
[[ $status -eq 0 ]] || { echo "the binary interface has changed; if that is meant, see docs/binary-interface.md" >&2; exit 1; }
echo "the binary interface is the one in libbrevan.abi"
