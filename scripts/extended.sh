#!/bin/bash
# What scripts/test.sh --all adds to the ordinary tests; sourced after common.sh. A new kind of check is one function
# that builds what it needs and prints CTest lines for test.sh, called in extendedTests.
extendedPackages() { echo clang-tidy gcovr; }
extendedTests() {
    extendedThreads
    extendedCheck coverage Coverage "$TOP/scripts/coverage.sh"
    extendedCheck mutants Mutants "$TOP/scripts/mutants.sh"
    extendedTidy
    extendedMemory
    extendedKernelHost LifeLong life_tests --rounds=50
    extendedKernelHost ManyLong many_tests --disks=64
}

measureCoverage() {                          # scripts/test.sh --coverage: this one alone
    installPackages gcovr
    buildPreset coverage
    exec "$TOP/scripts/coverage.sh"
}

extendedThreads() {                          # the unit tests once more, under the thread sanitizer
    buildPreset tsan >&2
    echo "subdirs(\"$TOP/build/tsan\")"
}

extendedCheck() {                            # LABEL NAME COMMAND: one check that takes the whole machine and some time
    [[ $1 != coverage ]] || buildPreset coverage >&2
    echo "add_test($2 \"$3\")"
    echo "set_tests_properties($2 PROPERTIES LABELS $1 TIMEOUT 3600 RUN_SERIAL ON)"
}

extendedTidy() {                             # without the compilations of the preset's own build: half the time
    configurePreset tidy >&2
    echo "add_test(ClangTidy run-clang-tidy -quiet -j $(nproc) -p \"$TOP/build/tidy\")"
    echo "set_tests_properties(ClangTidy PROPERTIES LABELS tidy TIMEOUT 5400 RUN_SERIAL ON)"
}

extendedMemory() {                           # memory that ends at every allocation, watched by the address sanitizer
    echo "add_test(SimulatedHost.OutOfMemoryLong \"$TOP/tests/simulated_host/run-in-host.sh\" \"$TOP/build/asan\" --"
    echo "  env BREVAN_EVERY_ALLOCATION=1 \"$TOP/build/asan/bin/memory_tests\" --gtest_brief=1)"
    echo "set_tests_properties(SimulatedHost.OutOfMemoryLong PROPERTIES LABELS simulated_host_long TIMEOUT 1800)"
}

extendedKernelHost() {                       # NAME PROGRAM ARGUMENT...: a scenario of the kernel host in its long form
    echo "add_test(KernelHost.$1 \"$TOP/tests/kernel_host/run-in-guest.sh\" --limit 1700 --show \"$TOP/build/release\" --"
    echo "  \"$TOP/build/release/bin/$2\" --gtest_brief=0 ${*:3})"
    echo "set_tests_properties(KernelHost.$1 PROPERTIES LABELS kernel_host_long TIMEOUT 1800)"
}
