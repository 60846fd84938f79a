#!/bin/bash
# Runs the main job once, from login to disk: installs missing packages, builds, prepares a host that is thrown away afterwards,
# starts the simulated array in it, and lets examples/attach_volume create a LUN, attach it and find its disk. The last two lines
# are the disk and its WWN, read back from the disk itself. Exit status 0 only when that WWN is the array's and the example's.
#   scripts/demo.sh                    on the kernel host: a real kernel, its iSCSI initiator, real SCSI disks
#   scripts/demo.sh --host simulated   on the simulated host: this kernel, disks are files that answer as SCSI disks do
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
}

parseArguments "$@"
printf -v begin '%(%s)T' -1
if [[ -z $build ]]; then
    say "packages"
    installPackages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
    buildPreset release brevan-array-sim attach_volume simulated_ioctl
    build=$TOP/build/release
fi
build=$(cd "$build" && pwd)
job=("$TOP/scripts/demo-on-host.sh" "$host" "$build" "$begin")
if [[ $host == simulated ]]; then
    say "simulated host: starting"
    exec "$TOP/tests/simulated_host/run-in-host.sh" "$build" -- "${job[@]}"
fi
guest=$TOP/tests/kernel_host/run-in-guest.sh
"$guest" --prepare
say "kernel host: booting"
exec "$guest" --limit 120 --show "$build" -- "${job[@]}"
