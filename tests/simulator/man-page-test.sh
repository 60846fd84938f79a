#!/bin/bash
# The man page names exactly the flags of --help and is clean for mandoc; the systemd unit is one that systemd takes.
#   man-page-test.sh MAN_PAGE UNIT PROGRAM
set -euo pipefail
page=$1 unit=$2 program=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$1" >&2; exit 1; }

"$program" --help | grep -oE '^  (-h,)?--[a-z-]+' | sed 's/.*--//' | sort >"$work/flags"
sed -nE 's/^\.It Fl -([a-z-]+).*/\1/p' "$page" | sort >"$work/documented"
[[ $(wc -l <"$work/flags") -gt 20 ]] || fail "--help names only $(wc -l <"$work/flags") flags"
diff "$work/flags" "$work/documented" || fail "$page and --help name different flags (< only in --help, > only in the page)"

mandoc -T lint -W warning "$page" || fail "$page is not clean"
mandoc -T ascii "$page" | grep -qF 'Print the version and end.' || fail "$page cannot be read"

"$program" --version | grep -qxE 'brevan-array-sim [0-9]+\.[0-9]+\.[0-9]+' || fail "--version says: $("$program" --version)"

# The unit's own program is the installed one, which is not there yet.
sed "s|^ExecStart=[^ ]*|ExecStart=$program|; /^Documentation=/d" "$unit" >"$work/brevan-array-sim.service"
grep -q "^ExecStart=$program --address" "$work/brevan-array-sim.service" || fail "$unit starts no brevan-array-sim"
if command -v systemd-analyze >/dev/null; then
    systemd-analyze verify "$work/brevan-array-sim.service" 2>"$work/verify" || fail "$unit: $(cat "$work/verify")"
    ! grep -F brevan-array-sim.service "$work/verify" || fail "$unit is not clean"
fi
# Its flags are flags of the program.
grep -v '^#' "$unit" | grep -oE -- ' --[a-z-]+' | sed 's/ --//' | sort | comm -23 - "$work/flags" >"$work/unknown"
[[ ! -s $work/unknown ]] || fail "$unit uses flags that are none: $(cat "$work/unknown")"
