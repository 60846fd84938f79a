#!/bin/bash
# scripts/demo.sh ends with the disk and its WWN, and refuses what it does not know: demo-test.sh kernel|simulated BUILD
set -euo pipefail
HERE=$(cd "$(dirname "$0")" && pwd)
DEMO=$HERE/../../scripts/demo.sh
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"

run() { status=0; output=$("$DEMO" "$@" 2>&1) || status=$?; }
run --host "$1" --build "$2"
echo "$output"
is "exit status" "$status" 0
last=$(tail -n 2 <<<"$output")
check "the last two lines are disk and WWN" grep -qzE '^disk      /dev/disk/by-id/\S+
wwn       6[0-9a-f]{31}
$' <<<"$last"
check "the WWN is the one that the array gave at the creation" grep -q "^create .* ${last##* } " <<<"$output"

for arguments in "--host" "--host other" "--build /no/folder" "--build" "more"; do
    # shellcheck disable=SC2086
    run $arguments
    is "status of '$arguments'" "$status" 2
done
run --help
is "status of --help" "$status" 0
endChecks
