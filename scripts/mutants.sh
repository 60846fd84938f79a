#!/bin/bash
# Tries the tests of the SDK: makes one small mistake at a time in a copy of the sources (build/mutants) and sees whether a test
# notices it, the contract tests first, then the unit tests. The mistakes stand in tests/mutants/mutants.txt.
#   scripts/mutants.sh                  all of them
#   scripts/mutants.sh --only TEXT      those whose file or description contains TEXT
#   scripts/mutants.sh --list           what there is, without trying it
# The last line says how many were noticed. Exit status 0 only when none survived but those that are argued to do the same.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
exec </dev/null
MUTANTS=$TOP/tests/mutants/mutants.txt
WORK=$TOP/build/mutants COPY=$TOP/build/mutants/source BUILD=$TOP/build/mutants/build LOG=$TOP/build/mutants/log
FOLDERS="support;foundation;session;model;handlers;attach;scanner;contract"
CONTRACT_LIMIT=45 UNIT_LIMIT=240             # seconds for one run; tests that hang have noticed

parseArguments() {
    only="" list=""
    while [[ $# -gt 0 ]]; do
        case $1 in
        --only) only=${2:-}; shift || true
            [[ -n $only ]] || die "--only takes a text" 2 ;;
        --list) list=yes ;;
        --help | -h) usage; exit 0 ;;
        *) die "unknown argument $1 (see --help)" 2 ;;
        esac
        shift
    done
}

# Into files[], whats[], olds[], news[] and reasons[].
readMutants() {
    local line number=0 last=-1
    files=() whats=() olds=() news=() reasons=()
    while IFS= read -r line; do
        number=$((number + 1))
        case $line in
        "@ "*) last=$((last + 1)); files[last]=${line#@ } whats[last]="" olds[last]="" news[last]="" reasons[last]="" ;;
        "# "*) [[ $last -lt 0 || -n ${olds[last]} ]] || whats[last]=${line#\# } ;;
        "- "*) olds[last]+=${olds[last]:+$'\n'}${line#- } ;;
        "+ "*) news[last]+=${news[last]:+$'\n'}${line#+ } ;;
        "= "*) reasons[last]=${line#= } ;;
        "") ;;
        *) die "$MUTANTS:$number: a line begins with @, #, -, + or = and a blank" 2 ;;
        esac
    done <"$MUTANTS"
}

copySources() {                              # what differs, with a new time: a run that was interrupted may have left a mutant behind
    local file
    cd "$TOP"
    git ls-files -z -co --exclude-standard | while IFS= read -r -d '' file; do
        if [[ ! -f $file ]] || cmp -s "$file" "$COPY/$file"; then continue; fi
        mkdir -p "$COPY/$(dirname "$file")"
        cp "$file" "$COPY/$file"
    done
}

build() { ninja -C "$BUILD" -j "$(nproc)" "$@" >"$LOG" 2>&1; }
contractNotices() { ! timeout "$CONTRACT_LIMIT" ctest --test-dir "$BUILD" -L '^contract$' --stop-on-failure >"$LOG" 2>&1; }
unitNotices() { ! timeout "$UNIT_LIMIT" ctest --test-dir "$BUILD" -L '^unit$' -j "$(nproc)" --stop-on-failure >"$LOG" 2>&1; }

prepare() {
    say "mutants: building the sources as they are"
    copySources
    cmake -S "$COPY" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DBREVAN_SIMULATOR=OFF \
        -DCMAKE_LINK_DEPENDS_NO_SHARED=ON "-DBREVAN_TEST_FOLDERS=$FOLDERS" >"$LOG" 2>&1 || { tail "$LOG"; die "cmake failed"; }
    build || { tail "$LOG"; die "the sources do not build"; }
    if contractNotices || unitNotices; then tail -n 20 "$LOG"; die "a test fails without any mutant"; fi
}

mutate() {                                   # INDEX: writes the mutant, the original beside it
    local path=$COPY/${files[$1]} text rest
    [[ -f $path ]] || die "there is no ${files[$1]}" 2
    text=$(cat "$path"; printf .)
    text=${text%.}
    rest=${text#*"${olds[$1]}"}
    [[ $rest != "$text" && $rest != *"${olds[$1]}"* ]] ||
        die "${files[$1]}: \"${whats[$1]}\": its text must stand there exactly once" 2
    cp -p "$path" "$WORK/original"
    printf '%s' "${text/"${olds[$1]}"/"${news[$1]}"}" >"$path"
}
restore() { cp "$WORK/original" "$COPY/${files[$1]}"; }

# The tests link the SDK's objects or its library: the library alone is enough for the contract.
try() {                                      # INDEX: sets outcome
    mutate "$1"
    if ! build brevan; then outcome="does not compile"
    elif contractNotices; then outcome="noticed by contract"
    elif build && unitNotices; then outcome="noticed by unit"
    else outcome="SURVIVED"; fi
    restore "$1"
    [[ -z ${reasons[$1]} ]] || case $outcome in
    SURVIVED) outcome="the same, as argued" ;;
    noticed*) outcome="NOT the same: argument wrong" ;;
    esac
}

parseArguments "$@"
readMutants
[[ -n $list ]] || prepare
total=0 noticed=0 same=0
for index in "${!files[@]}"; do
    name="${files[index]}: ${whats[index]}"
    [[ $name == *"$only"* ]] || continue
    total=$((total + 1))
    if [[ -n $list ]]; then echo "$name"; continue; fi
    try "$index"
    say "$(printf '%-20s %s' "$outcome" "$name")"
    case $outcome in
    noticed*) noticed=$((noticed + 1)) ;;
    the\ same*) same=$((same + 1)) ;;
    esac
done
[[ $total -gt 0 ]] || die "no mutant has that text" 2
[[ -z $list ]] || exit 0
echo "mutants: $noticed of $total killed, $same the same as argued, $((total - noticed - same)) survived or wrong"
[[ $((noticed + same)) -eq $total ]]
