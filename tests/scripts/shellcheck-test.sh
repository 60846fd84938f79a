#!/bin/bash
# Every script of ours is free of shellcheck's findings.
set -euo pipefail
cd "$(dirname "$0")/../.."
mapfile -t scripts < <(find .ci/run bench examples host scripts simulator tests -type f \( -name '*.sh' -o -path .ci/run \))
[[ ${#scripts[@]} -ge 5 ]] || { echo "only ${#scripts[@]} scripts found"; exit 1; }
echo "${#scripts[@]} scripts"
shellcheck -x "${scripts[@]}"
