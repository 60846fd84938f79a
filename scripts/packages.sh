#!/bin/bash
# Installs the Debian packages that building and testing need, where they are missing.
#   scripts/packages.sh [PACKAGE...]     further packages beside the list below
# Other scripts source this file and call installPackages; where nothing is missing it only asks dpkg (a few milliseconds).
set -euo pipefail

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config libcurl4-openssl-dev libssl-dev libjsoncpp-dev libspdlog-dev libfmt-dev
    libsafec-dev libinih-dev libboost-dev nlohmann-json3-dev libsqlite3-dev libcli11-dev)
TEST_PACKAGES=(libgtest-dev libgmock-dev bubblewrap openssl curl ca-certificates mandoc shellcheck sudo util-linux
    clang abigail-tools binutils locales)

missingPackages() {                          # PACKAGE...: prints those that are not installed
    local name state
    declare -A installed=()
    while read -r state name; do
        [[ $state != ii* ]] || installed[$name]=1
    done < <(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' "$@" 2>/dev/null || true)
    for name in "$@"; do [[ -n ${installed[$name]:-} ]] || echo "$name"; done
}

asRoot() {                                   # COMMAND...: runs it as root without asking for anything
    if [[ $EUID -eq 0 ]]; then "$@"
    elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then sudo -n "$@"
    else return 77
    fi
}

installPackages() {                          # PACKAGE...: installs those that are missing
    local missing log
    mapfile -t missing < <(missingPackages "$@")
    [[ ${#missing[@]} -gt 0 ]] || return 0
    echo "packages: installing ${missing[*]}"
    if ! asRoot true; then
        echo "packages: this needs root or sudo without a password. As root, run:" >&2
        echo "    apt-get update && apt-get install --no-install-recommends ${missing[*]}" >&2
        return 1
    fi
    log=$(mktemp)
    if ! { asRoot apt-get -q -o DPkg::Lock::Timeout=120 update &&
           asRoot env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends -o DPkg::Lock::Timeout=120 \
               -o Dpkg::Options::=--force-confold install "${missing[@]}"; } </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "packages: apt-get failed (its last lines stand above, all of them in $log)" >&2
        return 1
    fi
    rm -f "$log"
}

if [[ ${BASH_SOURCE[0]} == "$0" ]]; then
    case ${1:-} in
    --help | -h) sed -n '2,4s/^# \{0,1\}//p' "$0" ;;
    -*) echo "packages.sh: unknown option $1 (see --help)" >&2; exit 2 ;;
    *) installPackages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "$@" ;;
    esac
fi
