#!/bin/bash
# The picture in docs/simulator.md is that of the chain which the program prints for the demo's objects.
#   chain-picture-test.sh SOURCE PROGRAM
set -euo pipefail
pictures=$1/docs/pictures program=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$1; make it anew: brevan-array-sim --chain --format dot --seed demo.json, then dot -Tsvg" >&2; exit 1; }

diff <("$program" --chain --format dot --seed "$pictures/demo.json") "$pictures/chain.dot" || fail "$pictures/chain.dot is another chain"
diff <("$program" --dump --seed "$pictures/demo.json") "$pictures/demo.json" || fail "$pictures/demo.json is not as --dump writes it"
# Graphviz writes a hyphen as &#45; and the arrow of an edge as &gt;.
sed 's/&#45;/-/g' "$pictures/chain.svg" >"$work/picture"
grep -oE '^  "[^"]+"( -> "[^"]+")?' "$pictures/chain.dot" | sed 's/^  //; s/"//g; s/ -> /-\&gt;/' | while read -r object; do
    grep -qF "<title>$object</title>" "$work/picture" || fail "$pictures/chain.svg has no $object"
done
[[ $(grep -c '<title>' "$pictures/chain.svg") -gt 10 ]] || fail "$pictures/chain.svg shows too little"
grep -qF '(pictures/chain.svg)' "$1/docs/simulator.md" || fail "docs/simulator.md does not show the picture"
