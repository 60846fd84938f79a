#!/bin/bash
# Runs the benchmarks and prints a table: what was measured, the limit that it is compared with (measured in the same run), the
# ratio of the two and its goal. Exit status 0 when every goal is met, 1 when one is missed, 2 for a bad command line, 3 when a
# benchmark fails.
#   scripts/bench.sh                  all of them, on preset release; writes the figures into docs/performance.md, with a picture
#   scripts/bench.sh --only REGEX     only programs whose names match
#   scripts/bench.sh --json FILE      also writes a list of {"name", "measured", "limit", "unit", "ratio", "goal", "met"}
#   scripts/bench.sh --build FOLDER   the programs of that build instead of building preset release
#   scripts/bench.sh --list           only prints the names
#
# A benchmark is a program in FOLDER/bench or a script bench/*-bench.sh, which gets FOLDER as its argument. On standard output it
# prints a line for each figure: name, measured, limit, unit and goal ("<= 3" or ">= 0.3"), with tabs between them. Beside those:
# "# TEXT", a sentence that belongs to them, and what bench/throughput-plot.sh draws.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
exec </dev/null

BENCH_PACKAGES=(libbenchmark-dev nginx-light wrk openssl gnuplot-nox)     # what benchmarks need beside the build's packages

parseArguments() {
    only="" json="" build="" list=""
    while [[ $# -gt 0 ]]; do
        case $1 in
        --only) only=${2:-}; shift || true; [[ -n $only ]] || die "--only takes a regular expression" 2 ;;
        --json) json=${2:-}; shift || true; [[ -n $json ]] || die "--json takes a file" 2 ;;
        --build) build=${2:-}; shift || true; [[ -d $build ]] || die "--build: there is no folder ${build:-''}" 2 ;;
        --list) list=yes ;;
        --help | -h) usage; exit 0 ;;
        *) die "unknown argument $1 (see --help)" 2 ;;
        esac
        shift
    done
}

benchmarks() {                               # the paths of those that --only leaves
    local program
    for program in "$build"/bench/*_bench "$TOP"/bench/*-bench.sh; do
        [[ -f $program && -x $program ]] || continue
        [[ -z $only || ${program##*/} =~ $only ]] || continue
        echo "$program"
    done
}

runBenchmarks() {                            # leaves the figures in $figures
    local program
    for program in "$@"; do
        say "${program##*/}"
        "$program" "$build" >>"$figures" || die "${program##*/} failed" 3
    done
}

# Puts what was measured between the marks of docs/performance.md.
writeDocument() {                            # FIGURES JUDGED
    local page=$TOP/docs/performance.md
    "$TOP/bench/performance-page.sh" "$1" "$2" >"$2.page"
    sed -i -e "/^<!-- measured -->/,/^<!-- end -->/{/^<!-- measured -->/{p;r $2.page
}; /^<!-- end -->/p; d}" "$page"
    "$TOP/bench/throughput-plot.sh" "$1" >"$2.svg"
    mv "$2.svg" "$TOP/docs/pictures/throughput.svg"
}

# Adds ratio and "met" to each figure; a line that is no figure is a mistake of the benchmark, not something to leave out.
judge() {
    awk -F '\t' -v OFS='\t' '
        function number(text) { return text ~ /^-?[0-9.]+(e[-+]?[0-9]+)?$/ }
        NF != 5 || /["\\]/ || !number($2) || !number($3) || $3 == 0 || $5 !~ /^[<>]= [0-9.]+$/ {
            print "not a figure: " $0 >"/dev/stderr"; exit 3
        }
        { goal = substr($5, 4); ratio = $2 / $3
          print $1, $2, $3, $4, sprintf("%.3g", ratio), $5, (substr($5, 1, 1) == "<" ? ratio <= goal : ratio >= goal) ? "yes" : "no" }'
}

table() {
    awk -F '\t' 'BEGIN { printf "%-96s %12s %12s %-10s %8s %8s %s\n", "name", "measured", "limit", "unit", "ratio", "goal", "met" }
        { printf "%-96s %12s %12s %-10s %8s %8s %s\n", $1, $2, $3, $4, $5, $6, $7 }'
}

jsonList() {
    awk -F '\t' 'BEGIN { printf "[" }
        { printf "%s\n  {\"name\": \"%s\", \"measured\": %s, \"limit\": %s, \"unit\": \"%s\", \"ratio\": %s, \"goal\": \"%s\", \"met\": %s}",
              (NR > 1 ? "," : ""), $1, $2, $3, $4, $5, $6, ($7 == "yes" ? "true" : "false") }
        END { print "\n]" }'
}

parseArguments "$@"
if [[ -z $build ]]; then
    say "packages"
    installPackages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" "${BENCH_PACKAGES[@]}"
    buildPreset release benchmarks brevan-array-sim
    build=$TOP/build/release
fi
build=$(cd "$build" && pwd)
mapfile -t programs < <(benchmarks)
[[ ${#programs[@]} -gt 0 ]] || die "no benchmark${only:+ matches $only} in $build/bench and $TOP/bench" 2
if [[ -n $list ]]; then
    printf '%s\n' "${programs[@]##*/}"
    exit 0
fi
figures=$(mktemp)
trap 'rm -f "$figures" "$figures.judged" "$figures.judged.page" "$figures.judged.svg"' EXIT
runBenchmarks "${programs[@]}"
grep -v '^#' "$figures" | judge >"$figures.judged" || die "a benchmark printed what is no figure" 3
table <"$figures.judged"
sed -n 's/^# //p' "$figures"
[[ -n $only ]] || writeDocument "$figures" "$figures.judged"
[[ -z $json ]] || jsonList <"$figures.judged" >"$json"
! grep -q $'\tno$' "$figures.judged"
