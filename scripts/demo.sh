#!/bin/bash
# Runs the main job once, from login to disk: installs missing packages, builds, boots a throw-away Linux kernel, starts the
# simulated array in it, and lets examples/attach_volume create a LUN, attach it and find its disk. The last two lines are
# the disk and its WWN, read back from the disk itself. Exit status 0 only when that WWN is the array's.
#   scripts/demo.sh                    on the kernel host: a real kernel, its iSCSI initiator, real SCSI disks
#   scripts/demo.sh --host simulated   on a simulated host: not there yet, exit status 2
#   scripts/demo.sh --build FOLDER     with the programs of that build instead of building preset release
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
exec </dev/null

parseArguments() {
    host=kernel build=""
    while [[ $# -gt 0 ]]; do
        case $1 in
        --host) host=${2:-}; shift || true
            [[ $host == kernel || $host == simulated ]] || die "--host takes kernel or simulated" 2 ;;
        --build) build=${2:-}; shift || true
            [[ -x $build/bin/attach_volume ]] || die "--build: ${build:-the folder} has no bin/attach_volume" 2 ;;
        --help | -h) usage; exit 0 ;;
        *) die "unknown argument $1 (see --help)" 2 ;;
        esac
        shift
    done
    [[ $host == kernel ]] || die "there is no simulated host yet; run scripts/demo.sh --host kernel" 2
}

parseArguments "$@"
if [[ -z $build ]]; then
    say "packages"
    installPackages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
    buildPreset release brevan-array-sim attach_volume
    build=$TOP/build/release
fi
build=$(cd "$build" && pwd)
guest=$TOP/tests/kernel_host/run-in-guest.sh
"$guest" --prepare
say "kernel host: booting"
exec "$guest" --limit 120 --show "$build" -- "$TOP/scripts/demo-in-guest.sh" "$build" "$SECONDS"
