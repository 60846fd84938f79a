#!/bin/bash
# Tests of run-in-host.sh itself: what a caller gets back, and that nothing reaches this machine: harness-test.sh BUILD
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

host() { status=0; "$HERE/run-in-host.sh" "$@" >"$work/out" 2>"$work/err" || status=$?; }
said() { tr '\n' '|' <"$work/out"; }
semaphores() { ipcs -s | grep -c '^0x' || true; }

before=$(semaphores)
cd "$work"
host "$BUILD" -- sh -c 'pwd; sleep 1000 & exit 7'
is "the command's exit status and folder; a process left behind holds up nothing" "$status:$(said)" "7:$work|"

host "$BUILD" -- sh -c 'hostname; id -u; ls -A /dev/disk/by-id /run/simulated-host/disks; ls /opt/root_tool/common; sudo echo done; sed -n "s/^ *\(.*\):.*/\1/p" /proc/net/dev'
is "a prepared host without disks" "$status:$(said)" \
    "0:simulated-host|0|/dev/disk/by-id:||/run/simulated-host/disks:|security_sudo_v3.sh|done|lo|"

host "$BUILD" -- sh -c "for file in /opt /run /tmp /dev '$BUILD/lib/logs'; do echo gone >\$file/brevan-gone && echo \$file; done"
is "it may write into these folders" "$status:$(said)" "0:/opt|/run|/tmp|/dev|$BUILD/lib/logs|"
check "and nothing of that is left" test ! -e /opt/brevan-gone -a ! -e /run/brevan-gone -a ! -e /tmp/brevan-gone -a ! -e /dev/brevan-gone \
    -a ! -e "$BUILD/lib/logs/brevan-gone"
host "$BUILD" -- sh -c "touch '$work/gone' || touch '$HERE/gone' || touch '$BUILD/gone' || touch /usr/gone"
is "nowhere else" "$status" 1

host "$BUILD" -- sh -c "ipcmk -S 1 | sed 's/.*: //'"
is "the first semaphore set of the command gets another id than 0" "$status:$(said)" "0:1|"
host --fresh-ipc "$BUILD" -- sh -c "ipcmk -S 1 | sed 's/.*: //'"
is "... unless that is wanted" "$status:$(said)" "0:0|"
is "semaphore sets of this machine" "$(semaphores)" "$before"

host --limit 1 "$BUILD" -- sh -c 'echo begun; sleep 1000'
is "a command that does not end" "$status:$(said)" "124:begun|"
check "it says so" grep -q "sending signal" "$work/err"
for arguments in "" "--limit 0 $BUILD -- ls" "$BUILD" "/no/folder -- ls" "--other $BUILD -- ls" "$BUILD $BUILD -- ls" "-- ls"; do
    # shellcheck disable=SC2086
    host $arguments
    is "wrong arguments '$arguments'" "$status" 2
done
host --help
is "status of --help" "$status" 0
endChecks
