#!/bin/bash
# What the scripts share; sourced. TOP is the repository; say prints one line with the seconds since the start.
TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/packages.sh
source "$TOP/scripts/packages.sh"

say() { echo "[$SECONDS s] $*"; }
die() { echo "${0##*/}: $1" >&2; exit "${2:-1}"; }
usage() { sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"; }     # the comment at the top of the calling script

configurePreset() {                          # PRESET: ninja itself configures again when a CMake file has changed
    local folder=$TOP/build/$1
    [[ ! -f $folder/build.ninja || $TOP/CMakePresets.json -nt $folder/build.ninja ]] || return 0
    say "$1: configuring"
    mkdir -p "$folder"
    (cd "$TOP" && cmake --preset "$1") >"$folder/configure.log" 2>&1 && return 0
    tail -n 30 "$folder/configure.log" >&2
    die "cmake could not configure preset $1 (log: $folder/configure.log)"
}

buildPreset() {                              # PRESET [TARGET...]: compiler messages pass through; progress only to a terminal
    local preset=$1 quiet=(--quiet) begin=$SECONDS
    shift
    configurePreset "$preset"
    [[ ! -t 1 ]] || quiet=()
    say "$preset: building ${*:-everything}"
    ninja -C "$TOP/build/$preset" -j "$(nproc)" "${quiet[@]}" "$@" || die "preset $preset does not build"
    say "$preset: built in $((SECONDS - begin)) s"
}
