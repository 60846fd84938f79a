#!/bin/bash
# Tests of run-in-guest.sh itself: what a caller gets back when all goes well, and when the guest does not.
set -euo pipefail
GUEST=$(cd "$(dirname "$0")" && pwd)/run-in-guest.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

guest() { status=0; "$GUEST" "$@" >"$work/out" 2>"$work/err" || status=$?; }
is() {                                       # WHAT GOT WANTED
    if [[ $2 == "$3" ]]; then echo "ok   $1"; else echo "FAIL $1: got '$2', wanted '$3'"; failures=$((failures + 1)); fi
}

# Runs beside all others: on a busy machine the boot alone may take some seconds of this limit.
endless() {
    local ended=0
    "$GUEST" --limit 15 -- sh -c 'echo begun; sleep 1000' >"$work/limit-out" 2>"$work/limit-err" || ended=$?
    echo "$ended" >"$work/limit-status"
}
endless &
limited=$!

head -c 300000 /dev/urandom >"$work/bytes"
guest --show "$work" -- sh -c "cat '$work/bytes'; exit 7"
is "the command's exit status" "$status" 7
cmp -s "$work/out" "$work/bytes" && same=yes || same=no
is "output unchanged, byte for byte" "$same" yes

mkdir "$work/a folder"
guest --mount "$work/a folder" --show "$work" -- sh -c "cp '$work/bytes' '$work/a folder/copy'; echo gone >'$work/gone'; echo gone >/usr/gone"
cmp -s "$work/bytes" "$work/a folder/copy" && same=yes || same=no
is "a mounted folder keeps what the guest writes" "$status $same" "0 yes"
[[ -e $work/gone || -e /usr/gone ]] && found=yes || found=no
is "everything else the guest writes vanishes" "$found" no

guest -- sh -c 'sleep 1000 & ipcs -s | grep -c " 0 .*root"; udevadm settle 2>&1; ls /dev/disk/by-id 2>&1; cat /proc/sys/kernel/hostname'
is "a prepared host without disks; a process left behind holds up nothing" "$status:$(tr '\n' '|' <"$work/out")" \
    "0:1|ls: cannot access '/dev/disk/by-id': No such file or directory|kernel-host|"

guest -- sh -c 'echo c >/proc/sysrq-trigger'
is "a kernel that panics" "$status" 125
grep -q "kernel panicked" "$work/err" && said=yes || said=no
is "it says why" "$said" yes

for arguments in "" "--limit 0 -- ls" "--limit ten -- ls" "--memory much -- ls" "--mount /no/folder -- ls" "--other -- ls" "ls"; do
    # shellcheck disable=SC2086
    guest $arguments
    is "wrong arguments '$arguments'" "$status" 2
done

wait "$limited"
is "a command that does not end" "$(<"$work/limit-status") $(<"$work/limit-out")" "124 begun"
grep -q "limit of 15 s" "$work/limit-err" && said=yes || said=no
is "it says why" "$said" yes
[[ $failures -eq 0 ]]
