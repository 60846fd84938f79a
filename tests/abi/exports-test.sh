#!/bin/bash
# The libraries export what their headers declare, and nothing else: exports-test.sh LIBRARY-FOLDER SOURCE-FOLDER
set -euo pipefail
LIBRARIES=$1 SOURCE=$2
failures=0

exported() {                                 # LIBRARY: demangled names of all that it defines, without "typeinfo for" and the like
    nm -DC --defined-only --without-symbol-versions "$LIBRARIES/$1" | awk '$2 != "A"' | cut -c20- |
        sed -E 's/^(vtable|typeinfo name|typeinfo) for //' | sort -u
}

check() {                                    # LIBRARY ALLOWED: allowed are extended regular expressions, one a line
    local names strange
    names=$(exported "$1")
    strange=$(grep -vxEf <(echo "$2") <<<"$names" || true)
    [[ -z $strange ]] || { echo "$1 exports what no header declares:"; echo "$strange"; failures=1; }
    while IFS= read -r pattern; do
        grep -qxE "$pattern" <<<"$names" || { echo "$1 does not export $pattern"; failures=1; }
    done <<<"$2"
}

classes() {                                  # MARK FILE...: the classes that carry it, as patterns for themselves and their members
    grep -hoP "^(class|struct) \Q$1\E \K\w+" "${@:2}" | sed 's/$/(::.*)?/'
}

# Failure is a plain record: a compiler that inlines it leaves nothing to export.
check libbrevan.so "$(classes BREVAN_API "$SOURCE"/include/brevan/*.h | grep -v '^Failure'; echo 'brevan::lastFailure\(\)')"
check libQ7common.so "$(classes '__attribute__((visibility("default")))' "$SOURCE"/platform/include/*.h)"
check libPlimLogAPI.so "$(grep -oE '\b(LogInit|LogFini|Log_(Run|Interface)_[A-Z][a-z]+)\b' "$SOURCE/platform/include/PlimLogAPI.h" | sort -u)"
exit "$failures"
