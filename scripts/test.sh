#!/bin/bash
# Builds and tests everything: installs missing packages, builds presets release and asan, runs the tests of both and those
# on the kernel host, and ends with CTest's summary. Exit status 0 only when everything was built and every test passed.
#   scripts/test.sh                what is run before every change
#   scripts/test.sh --label L      only tests with that label: unit, contract, package, simulated_host, kernel_host
#   scripts/test.sh --preset P     only that preset: release, asan, dev, tsan
#   scripts/test.sh --coverage     only how much of the SDK the tests reach, with the lines that they do not
#   scripts/test.sh --all          all of this, and the thread sanitizer, clang-tidy, coverage, mutants, and the kernel host's long forms
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
# shellcheck source=scripts/extended.sh
source "$TOP/scripts/extended.sh"
exec </dev/null

LABELS=(unit contract package simulated_host kernel_host)
FOLDER=$TOP/build/all

parseArguments() {
    label="" all="" coverage="" presets=()
    while [[ $# -gt 0 ]]; do
        case $1 in
        --label) label=${2:-} ; shift
            [[ -n $label && " ${LABELS[*]} " == *" $label "* ]] || die "--label takes one of: ${LABELS[*]}" 2 ;;
        --preset) presets=("${2:-}"); shift
            [[ ${presets[0]} =~ ^(release|asan|dev|tsan)$ ]] || die "--preset takes one of: release asan dev tsan" 2 ;;
        --all) all=yes ;;
        --coverage) coverage=yes ;;
        --help | -h) usage; exit 0 ;;
        *) die "unknown argument $1 (see --help)" 2 ;;
        esac
        shift
    done
    # A program built with a sanitizer does not run in the kernel host's guest.
    if [[ ${#presets[@]} -eq 0 ]]; then
        presets=(release)
        [[ $label == kernel_host ]] || presets+=(asan)
    fi
}

# One CTest run over all presets, so that there is one summary.
gatherTests() {
    local preset
    mkdir -p "$FOLDER"
    for preset in "${presets[@]}"; do echo "subdirs(\"$TOP/build/$preset\")"; done >"$FOLDER/tests.part"
    [[ -z $all ]] || extendedTests >>"$FOLDER/tests.part"
    mv "$FOLDER/tests.part" "$FOLDER/CTestTestfile.cmake"
}

runTests() {
    local select=()
    [[ -z $label ]] || select=(-L "^$label\$")
    say "testing: ${label:-all labels}, presets ${presets[*]}${all:+, and the extended checks}"
    cd "$FOLDER"
    exec ctest -j "$(nproc)" --output-on-failure --no-tests=error --timeout 600 "${select[@]}"
}

parseArguments "$@"
say "packages"
installPackages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" ${all:+$(extendedPackages)}
if [[ -n $coverage ]]; then measureCoverage; fi
for preset in "${presets[@]}"; do buildPreset "$preset"; done
if [[ -z $label || $label == kernel_host ]] && [[ " ${presets[*]} " =~ " release " || " ${presets[*]} " =~ " dev " ]]; then
    "$TOP/tests/kernel_host/run-in-guest.sh" --prepare
fi
gatherTests
runTests
