#!/bin/bash
# How much of the SDK's own folders its tests reach: runs the tests of build/coverage (made by scripts/test.sh --coverage) and
# lists, file by file, the lines that none of them reached. Branches that the compiler adds for exceptions are not counted.
# Exit status 0 only when all tests passed and at least 95 % of lines and 85 % of branches were reached.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
LINES_WANTED=95 BRANCHES_WANTED=85
BUILD=$TOP/build/coverage

case ${1:-} in
"") ;;
--help | -h) usage; exit 0 ;;
*) die "unknown argument $1 (see --help)" 2 ;;
esac
[[ -d $BUILD ]] || die "there is no build for it; run scripts/test.sh --coverage" 2
find "$BUILD" -name '*.gcda' -delete
ctest --test-dir "$BUILD" -j "$(nproc)" --output-on-failure --no-tests=error --timeout 600 >"$BUILD/ctest.log" ||
    { tail -n 60 "$BUILD/ctest.log"; die "a test failed"; }
cd "$TOP"
exec gcovr --root . --object-directory "$BUILD" --filter '(foundation|session|model|handlers|attach|scanner)/' \
    --exclude-throw-branches --exclude-unreachable-branches --print-summary \
    --fail-under-line "$LINES_WANTED" --fail-under-branch "$BRANCHES_WANTED" "$BUILD/CMakeFiles/brevan_objects.dir"
