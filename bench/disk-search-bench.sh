#!/bin/bash
# What a search among 1,024 disks costs, on the simulated host, whose disks are files.
#   bench/disk-search-bench.sh FOLDER        FOLDER: a build with the target benchmarks
set -euo pipefail
TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=${1:?the folder of the build}
exec "$TOP/tests/simulated_host/run-in-host.sh" --limit 600 "$BUILD" -- "$BUILD/bench/disk_search" 1024
