#!/bin/bash
# Installs a build into a folder of its own, moves it, and uses it as a user would: programs outside the tree, built by
# CMake's package and by pkg-config.
#   install-test.sh SOURCE_FOLDER BUILD_FOLDER VERSION
set -euo pipefail

source_folder=$1
build_folder=$2
version=$3
here=$source_folder/tests/install
work=$(mktemp -d "${TMPDIR:-/tmp}/brevan-install-XXXXXX")
array_pid=

tidy() {
    if [[ -n $array_pid ]]; then
        kill "$array_pid" 2>/dev/null || true
        wait "$array_pid" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap tidy EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

step() { echo "-- $* (${SECONDS} s)"; }

# expect STATUS COMMAND...: its output goes to $work/output, which is shown where the status is another.
expect() {
    local wanted=$1 status=0
    shift
    "$@" >"$work/output" 2>&1 </dev/null || status=$?
    [[ $status == "$wanted" ]] || fail "exit status $status, not $wanted: $*"$'\n'"$(cat "$work/output")"
}

# expectOutput TEXT: stands in the output of the last expect.
expectOutput() { grep -qF -- "$1" "$work/output" || fail "no \"$1\" in:"$'\n'"$(cat "$work/output")"; }

# What stands in share/ belongs to host/ and the documents.
filesOf() { (cd "$1" && find . ! -type d ! -path "./share/*" | sed 's,^\./,,' | sort); }

installComponent() { expect 0 cmake --install "$build_folder" --prefix "$1" --component "$2"; }

# Each component alone holds what it is for and nothing of the others.
checkComponents() {
    local component
    for component in runtime devel simulator; do installComponent "$work/$component" "$component"; done
    libdir=$(dirname "$(cd "$work/runtime" && find . -name 'libbrevan.so.*' -type f | sed 's,^\./,,')")
    [[ $(filesOf "$work/runtime") == "$(printf '%s\n' "$libdir"/brevan/{Brevan_API.ini,libPlimLogAPI.so,libQ7common.so,transport.ini} \
        "$libdir"/libbrevan.so.{"${version%%.*}","$version"} | sort)" ]] || fail "component runtime holds: $(filesOf "$work/runtime")"
    [[ $(filesOf "$work/simulator") == bin/brevan-array-sim ]] || fail "component simulator holds: $(filesOf "$work/simulator")"
    local wanted
    wanted=$({ (cd "$source_folder" && printf '%s\n' include/brevan/*.h); printf '%s\n' "$libdir"/libbrevan.so \
        "$libdir"/cmake/brevan/brevan-config{,-version}.cmake "$libdir"/pkgconfig/brevan.pc; } | sort)
    [[ $(filesOf "$work/devel") == "$wanted" ]] || fail "component devel holds: $(filesOf "$work/devel")"
}

# What an administrator wrote into the settings survives the next installation.
checkSettingsSurvive() {
    echo "# edited" >>"$work/runtime/$libdir/brevan/Brevan_API.ini"
    installComponent "$work/runtime" runtime
    grep -qx "# edited" "$work/runtime/$libdir/brevan/Brevan_API.ini" || fail "an edited Brevan_API.ini was overwritten"
}

# All components in one place, which is then another than they were installed to. Logs stay in the test's folder.
makePrefix() {
    expect 0 cmake --install "$build_folder" --prefix "$work/first"
    mkdir "$work/moved"
    mv "$work/first" "$work/moved/prefix"
    prefix=$work/moved/prefix
    sed -i "s,^directory = .*,directory = ../../logs," "$prefix/$libdir/brevan/Brevan_API.ini"
    export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
    unset PKG_CONFIG_LIBDIR PKG_CONFIG_SYSROOT_DIR LD_LIBRARY_PATH BREVAN_TRANSPORT_CONFIG CXXFLAGS LDFLAGS
}

buildWithCMake() {
    local sources
    sources=$(IFS=';'; echo "$*")
    expect 0 cmake -S "$here/consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCONSUMER_SOURCES="$sources"
    expect 0 cmake --build "$work/cmake" -j2
    expect 1 cmake -S "$here/consumer" -B "$work/cmake-2" -DCMAKE_PREFIX_PATH="$prefix" -DCONSUMER_WANTS=$((${version%%.*} + 1)).0
    expectOutput "version: $version"
}

# Nothing but the flags of pkg-config: the linker finds the platform libraries itself.
buildWithPkgConfig() {
    local source flags
    read -ra flags <<<"$(pkg-config --cflags --libs brevan)"
    mkdir -p "$work/pkgconfig"
    for source in "$@"; do
        expect 0 g++ -Wall -Wextra -Wpedantic -Werror "$source" "${flags[@]}" -o "$work/pkgconfig/$(basename "$source" .cpp)"
    done
}

# The headers ask for the standard library and each other only, from C++11 on.
checkHeaders() {
    if grep -H '#include' "$prefix"/include/brevan/*.h | grep -vE '#include <(brevan/[A-Za-z]+\.h|[a-z_]+)>'; then
        fail "the public headers include something else"
    fi
    echo '#include <brevan/brevan.h>' >"$work/all.cpp"
    expect 0 g++ -std=c++11 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I "$prefix/include" "$work/all.cpp"
}

# run STATUS PROGRAM ARGUMENT...: built by pkg-config, and so told where the library is; CMake's knows it.
run() {
    local wanted=$1 program=$2
    shift 2
    expect "$wanted" "$work/cmake/$program" "$@"
    expect "$wanted" env LD_LIBRARY_PATH="$prefix/$libdir" "$work/pkgconfig/$program" "$@"
}

checkConsumer() {
    run 0 Consumer
    expectOutput "loginDevice: "
    local records
    records=$(cat "$prefix"/logs/*.Consumer.*.interface.log | cut -f 4-6)
    [[ $records == $'ERROR\t1005\tloginDevice\nERROR\t1005\tloginDevice' ]] || fail "the interface logs hold: $records"
}

startArray() {
    BREVAN_SIM_PASSWORD=right "$prefix/bin/brevan-array-sim" --ca-file "$work/ca.pem" --port-file "$work/port" >"$work/array" 2>&1 &
    array_pid=$!
    local tries=0
    until [[ -s $work/port ]]; do
        kill -0 "$array_pid" || fail "the array ended: $(cat "$work/array")"
        [[ $((tries += 1)) -lt 200 ]] || fail "the array does not listen: $(cat "$work/array")"
        sleep 0.05
    done
}

stopArray() {
    kill "$array_pid"
    wait "$array_pid" || fail "the array ended with status $?: $(cat "$work/array")"
    array_pid=
}

# The example that users copy, against an installed array: each trouble has its exit status and its one line.
checkExample() {
    local arguments=(--address 127.0.0.1 --port "$(cat "$work/port")" --initiator iqn.2024-01.example:host)
    run 0 attach_volume --help
    expectOutput "--initiator"
    run 2 attach_volume
    export BREVAN_PASSWORD=wrong
    run 5 attach_volume "${arguments[@]}"
    printf '[tls]\nca_file = %s\n' "$work/ca.pem" >"$prefix/$libdir/brevan/transport.ini"
    run 3 attach_volume "${arguments[@]}"
    expectOutput "cannot log in to 127.0.0.1"
    BREVAN_PASSWORD=right run 7 attach_volume "${arguments[@]}"
    stopArray
    run 4 attach_volume "${arguments[@]}"
}

step "components"
checkComponents
checkSettingsSurvive
step "installing and moving"
makePrefix
programs=("$here/consumer/Consumer.cpp" "$source_folder/examples/attach_volume.cpp")
step "building with CMake's package"
buildWithCMake "${programs[@]}"
step "building with pkg-config"
buildWithPkgConfig "${programs[@]}"
step "headers"
checkHeaders
step "running"
checkConsumer
startArray
checkExample
step "passed"
