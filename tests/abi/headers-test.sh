#!/bin/bash
# Every public header compiles alone, without a warning, with both compilers and every standard that an application may use, and
# all of them together where minor(), major(), min() and max() are macros: headers-test.sh INCLUDE-FOLDER
set -euo pipefail
INCLUDE=$1
COMPILERS=(g++ clang++) STANDARDS=(11 14 17 20)
export WARNINGS="-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Werror"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$INCLUDE/brevan" "$work/"

# Standard headers first: their own uses of the names come before the macros.
cat >"$work/macros.cpp" <<'SOURCE'
#include <cstdint>
#include <exception>
#include <string>
#include <vector>
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define major(device) ((device) >> 8)
#define minor(device) ((device) & 255)
#include <brevan/brevan.h>
SOURCE

compile() {                                  # FOLDER COMPILER STANDARD FILE
    # shellcheck disable=SC2086
    "$2" "-std=c++$3" -pedantic-errors $WARNINGS -fsyntax-only -x c++ -I "$1" "$1/$4" 2>"$1/$2.$3.${4//\//.}.txt" && return 0
    echo "$2 -std=c++$3 does not take $4:"
    head -n 15 "$1/$2.$3.${4//\//.}.txt"
    return 1
}
export -f compile

headers=$(cd "$work" && ls brevan/*.h)
[[ $(wc -l <<<"$headers") -ge 20 ]] || { echo "there are no public headers in $INCLUDE" >&2; exit 1; }
for compiler in "${COMPILERS[@]}"; do
    for standard in "${STANDARDS[@]}"; do
        for file in $headers macros.cpp; do echo "$work $compiler $standard $file"; done
    done
done >"$work/jobs"
xargs -P "$(nproc)" -L 1 bash -c 'compile "$@"' compile <"$work/jobs" || exit 1
echo "$(wc -l <"$work/jobs") compilations without a warning"
