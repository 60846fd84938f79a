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

# Compiler messages pass through. A terminal gets ninja's own progress, anything else a line every 30 s.
showProgress() {                             # PRESET
    local line next=$((SECONDS + 30))
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+/[0-9]+)\]\  ]]; then
            [[ $SECONDS -ge $next ]] || continue
            say "$1: step ${BASH_REMATCH[1]}"
            next=$((SECONDS + 30))
        elif [[ $line != "ninja: Entering directory"* && $line != "ninja: no work to do." ]]; then
            echo "$line"
        fi
    done
}

runNinja() {                                 # PRESET [TARGET...]
    local ninja=(ninja -C "$TOP/build/$1" -j "$(nproc)" "${@:2}")
    if [[ -t 1 ]]; then "${ninja[@]}"; else "${ninja[@]}" 2>&1 | showProgress "$1"; fi
}

buildPreset() {                              # PRESET [TARGET...]
    local preset=$1 begin=$SECONDS
    configurePreset "$preset"
    say "$preset: building${2:+ ${*:2}}"
    runNinja "$@" || die "preset $preset does not build"
    say "$preset: built in $((SECONDS - begin)) s"
}
