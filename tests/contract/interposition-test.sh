#!/bin/bash
# interposition-test.sh TEST_PROGRAM LIBBREVAN PLATFORM_LIBRARY...
# Whatever libbrevan takes from the platform libraries, and whatever it takes from the C library that would touch the host or cost
# time, must stand in the test program: else a row would reach the real thing.
set -euo pipefail
export LC_ALL=C

readonly program=$1 library=$2
shift 2
readonly interface='^_ZNK?(11RestRequest|12RestResponse|12CUserManager|8PlimTool|9RestToMgr)|^Log'
readonly host=(nanosleep clock_nanosleep usleep sleep gettimeofday clock_gettime system popen posix_spawn execve open __open_2
    openat ioctl stat access semop)

symbols() { # names without their version
    nm -D "$@" | awk '{ sub(/@.*/, "", $NF); print $NF }' | sort -u
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
symbols --defined-only "$program" >"$work/program"
symbols --undefined-only "$library" >"$work/wanted"
{
    symbols --defined-only "$@" | grep -E "$interface"
    printf '%s\n' "${host[@]}"
} | sort -u >"$work/watched"

comm -12 "$work/wanted" "$work/watched" >"$work/needed"
grep -q 'RestRequest11SendRequest' "$work/needed"
grep -qx Log_Run_Info "$work/needed"
missing=$(comm -23 "$work/needed" "$work/program" | c++filt)
if [[ -n $missing ]]; then
    printf 'not in the test program: %s\n' "$missing" >&2
    exit 1
fi
