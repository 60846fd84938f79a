#!/bin/bash
# The library in processes that are odd in one way each. Runs on the simulated host: guest-test.sh BUILD
set -euo pipefail
HOST=simulated BUILD=$1 PROGRAM=attach_volume
# shellcheck source=tests/examples/example.sh
source "$(dirname "$0")/../examples/example.sh"

startForExample
printf '[time]\nrequest_seconds = 7.5\nconnect_seconds = 2.25\n' >>"$BREVAN_TRANSPORT_CONFIG"
export GUEST_PORT=$ARRAY_PORT GUEST_LUN=$lun GUEST_INITIATOR=$INITIATOR

check "a plain process, C locale" env LC_ALL=C "$BUILD/bin/guest_job" plain
mkdir /tmp/locales
localedef -i de_DE -f UTF-8 /tmp/locales/de_DE.UTF-8
# The C library itself leaks what it reads of LOCPATH.
check "a locale with decimal commas" env ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0" LOCPATH=/tmp/locales LC_ALL=de_DE.UTF-8 "$BUILD/bin/guest_job" locale
check "descriptors 0 to 2 closed" "$BUILD/bin/guest_job" descriptors
check "SIGCHLD ignored" "$BUILD/bin/guest_job" sigchld
check "children collected by another thread" "$BUILD/bin/guest_job" collector
check "a signal every millisecond" "$BUILD/bin/guest_job" signals
check "SIGPIPE at its default, and connections that break" "$BUILD/bin/guest_job" sigpipe
check "a stack of 64 KiB" "$BUILD/bin/guest_job" stack
# The child makes the lock that keeps forks out anew; the thread sanitizer cannot see that and takes it for held ever after.
[[ $(ldd "$BUILD/bin/guest_job") == *libtsan* ]] || check "fork without exec" "$BUILD/bin/guest_job" fork
step "oddities done"

# Multipath software, and the setting that lets a disk found without a rescan be followed by one, which is slow.
setting=/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan
mkdir -p "${setting%/*}" /tmp/bin
touch $setting
echo "Tendrix path manager" >"$SIMULATED_HOST/message"
cat >/tmp/bin/sudo <<'END'
#!/bin/bash
echo "$2" >>/tmp/rescans-begun
[[ $2 != do_uprescan || $(grep -c do_uprescan /tmp/rescans-begun) == 1 ]] || sleep 1
"$@" || exit
echo "$2" >>/tmp/rescans-ended
END
chmod +x /tmp/bin/sudo
apiOk POST /snapshot "{\"NAME\": \"nightly\", \"PARENTTYPE\": 11, \"PARENTID\": \"$lun\"}"
check "unloaded while a rescan runs in the background" env PATH="/tmp/bin:$PATH" "$BUILD/bin/guest_loader" "$BUILD/lib/libbrevan.so" "$(field ID)"
is "rescans that began: one in the foreground, three behind" "$(grep -c do_uprescan /tmp/rescans-begun)" 4
is "rescans that ended" "$(grep -c do_uprescan /tmp/rescans-ended)" 4

echo "no settings" >/tmp/bad.ini
export BREVAN_TRANSPORT_CONFIG=/tmp/bad.ini
trouble "settings named by the environment" 1 "cannot log in" --lun "$lun"
program() { "$BUILD/bin/run_secure" "$BUILD/bin/$PROGRAM" "${connection[@]}" "$@" >/tmp/output 2>$ERRORS; }
trouble "a program with privileges does not look at it" 5 "Set ca_file" --lun "$lun"
export BREVAN_TRANSPORT_CONFIG=/tmp/transport.ini
mkdir /tmp/trap
printf '#!/bin/sh\necho tmp-block of the trap\n' >/tmp/trap/lsscsi
chmod +x /tmp/trap/lsscsi
is "a command is looked for in PATH" "$(PATH=/tmp/trap:$PATH "$BUILD/bin/guest_command")" "tmp-block of the trap"
is "a program with privileges looks in the system's folders only" \
    "$(PATH=/tmp/trap:$PATH "$BUILD/bin/run_secure" "$BUILD/bin/guest_command")" ""
stopArray
endChecks
