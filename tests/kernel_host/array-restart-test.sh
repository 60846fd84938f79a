#!/bin/bash
# An array with a database whose volumes are disks of the kernel: killed, started again, ended. Without the SDK. Runs inside the kernel
# host: array-restart-test.sh BUILD
set -euo pipefail
BUILD=$1
HERE=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=tests/kernel_host/array.sh
source "$HERE/array.sh"
# shellcheck source=tests/support/checks.sh
source "$HERE/../support/checks.sh"
CONFIG=/sys/kernel/config/target
DATABASE=(--db "$ARRAY_DIR/array.db")

exported() { find $CONFIG/iscsi $CONFIG/core -mindepth 2 \( -name '6*' -o -name 'iqn*' \) 2>/dev/null | wc -l; }
begin() { startArray "${DATABASE[@]}" && apiLogin; }
sameData() { dd if="$1" bs=1M count=1 iflag=direct status=none | cmp - /tmp/pattern; }

begin
lun=$(newLun kept 32768)
wwn=$(wwnOfLun "$lun")
mapToInitiator "$lun"
loginInitiator
check "rescan" rescan
head -c 1M /dev/urandom >/tmp/pattern
dd if=/tmp/pattern of="$(diskOfWwn "$wwn")" bs=1M oflag=direct status=none
step "mapped and written"

logoutInitiator
kill -KILL "$ARRAY_PID"
wait "$ARRAY_PID" 2>/dev/null || true
check "killed: the kernel still has what the array made" test "$(exported)" -gt 0
mkdir $CONFIG/core/fileio_0/"${wwn:0:16}00000000000000ff"     # as if the kill had come between two steps
touch "$ARRAY_DIR/volumes/${wwn:0:16}00000000000000ff.img.part"
begin
check "started again: a disk without its export is gone" test ! -e $CONFIG/core/fileio_0/"${wwn:0:16}00000000000000ff"
check "so is a copy that was not finished" test ! -e "$ARRAY_DIR/volumes/${wwn:0:16}00000000000000ff.img.part"
loginInitiator
check "rescan" rescan
is "the same disk is back" "$(wwnOfDisk "$(diskOfWwn "$wwn")")" "$wwn"
check "and holds what was written" sameData "$(diskOfWwn "$wwn")"
step "killed and started again"

snapshot=$(create /snapshot "{\"NAME\": \"before\", \"PARENTID\": \"$lun\"}")
apiOk GET "/SNAPSHOT/$snapshot"
copy=$(field WWN)
dd if=/dev/zero of="$(diskOfWwn "$wwn")" bs=1M count=1 oflag=direct status=none
join /lungroup/associate POST "$lunGroup" 27 "$snapshot"
check "rescan" rescan
check "the snapshot's disk holds what was there before" sameData "$(diskOfWwn "$copy")"
logoutInitiator
status=0
stopArray || status=$?
is "the array ends on SIGTERM" "$status" 0
is "and leaves nothing in the kernel's target" "$(exported)" 0
check "but the volumes, which its database knows" test -e "$ARRAY_DIR/volumes/$copy.img"
step "snapshot and end"

begin
loginInitiator
check "rescan" rescan
check "ended and started again: the snapshot's disk is back" sameData "$(diskOfWwn "$copy")"
logoutInitiator
stopArray
step "done"
endChecks
