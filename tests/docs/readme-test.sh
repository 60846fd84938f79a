#!/bin/bash
# Builds the program that the README shows, runs it against a port where nothing listens, and follows the README's links.
#   readme-test.sh SOURCE BUILD
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "README.md: $1" >&2; exit 1; }

program() { awk '/^```cpp$/ {on = 1; next} /^```$/ {on = 0} on' "$source/README.md"; }
program | sed 's/"192\.0\.2\.10", 8088/"127.0.0.1", 1/' >"$work/main.cpp"
grep -q '"127.0.0.1", 1' "$work/main.cpp" || fail "its program does not log in to 192.0.2.10:8088 any more; adapt this test"
g++ -std=c++11 -Wall -Wextra -Werror -I"$source/include" "$work/main.cpp" -o "$work/main" -L"$build/lib" -lbrevan -Wl,-rpath,"$build/lib" ||
    fail "its program does not build"
status=0
"$work/main" >"$work/output" 2>&1 || status=$?
[[ $status = 1 ]] || fail "its program ended with $status instead of 1, where no array is"
grep -qx 'Login device fail, please check network or device is OK' "$work/output" || fail "its program said: $(cat "$work/output")"

grep -oE '\]\([^)#]+\)' "$source/README.md" | tr -d '])(' | while read -r link; do
    [[ -e $source/$link ]] || fail "$link does not exist"
done
grep -oE '^scripts/[a-z]+\.sh' "$source/README.md" | while read -r script; do
    [[ -x $source/$script ]] || fail "$script cannot be run"
done
