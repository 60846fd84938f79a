#!/bin/bash
# The rescan script of the simulated host: makes disks of what the array exposes to this host's initiator.
#   security_sudo_v3.sh do_uprescan        what the array's list shows and the host has not yet becomes a disk
#   security_sudo_v3.sh dev_rescan NAME    the disk gets its volume's size of now
# As on a real host, a disk stays when its volume is no longer exposed, but answers nothing any more; it comes back with its volume.
# $HOST/session leads to the folder of the array's exposure "tree" while this host's initiator is logged in there; disks/NAME is what a disk
# answers (ScsiGeneric.cpp), volumes/WWN tells the disk of a volume, then "exposed" or "gone". $HOST/message is what it says besides.
set -euo pipefail
shopt -s nullglob
HOST=/run/simulated-host BY_ID=/dev/disk/by-id

die() { echo "security_sudo_v3.sh: $2" >&2; exit "$1"; }

freeName() {                                 # leaves in $name the first of sda, sdb, ... sdz, sdaa, ... that is free
    local number=0 rest letters=({a..z})
    for ((number = 0; ; ++number)); do
        name=""
        for ((rest = number + 1; rest > 0; rest = (rest - 1) / 26)); do name=${letters[(rest - 1) % 26]}$name; done
        name=sd$name
        [[ -e /dev/$name ]] || return 0
    done
}

writePage() {                                # WWN: the volume's designator first, then the port's
    echo "00 83 00 1c        # disk, page 0x83, length"
    echo "01 03 00 10 ${1//??/& }   # NAA designator of the volume"
    echo "51 94 00 04 00 00 00 01   # the target port that leads there"
}

writeGone() {
    echo "status 02"
    echo "sense 70 00 05 00 00 00 00 0a 00 00 00 00 25 00 00 00 00 00   # logical unit not supported"
}

addDisk() {                                  # WWN BYTES: leaves its name in $name
    freeName
    echo "volume ${1: -8}, first block" >"/dev/$name"
    truncate -s "$2" "/dev/$name"
    ln -sfn "../../$name" "$BY_ID/scsi-3$1"
    ln -sfn "../../$name" "$BY_ID/wwn-0x$1"
}

expose() {                                   # WWN BYTES
    local name="" state=""
    [[ ! -e $HOST/volumes/$1 ]] || read -r name state <"$HOST/volumes/$1"
    [[ -n $name && -e /dev/$name ]] || { addDisk "$@"; state=new; }
    [[ $state == exposed ]] || writePage "$1" >"$HOST/disks/$name"
    echo "$name exposed" >"$HOST/volumes/$1"
}

do_uprescan() {
    local file list wwn bytes name state
    declare -A exposed=()
    list=$HOST/session/$(<$HOST/initiator)
    [[ -e $list ]] || list=/dev/null
    while read -r _ wwn bytes; do
        exposed[$wwn]=yes
        expose "$wwn" "$bytes"
    done <"$list"
    for file in "$HOST"/volumes/*; do
        [[ -z ${exposed[${file##*/}]:-} ]] || continue
        read -r name state <"$file"
        [[ $state == exposed && -e /dev/$name ]] || continue
        writeGone >"$HOST/disks/$name"
        echo "$name gone" >"$file"
    done
    echo "SCSI hosts scanned: ${#exposed[@]} disks exposed"
    [[ ! -e $HOST/message ]] || cat "$HOST/message" >&2
}

dev_rescan() {                               # NAME
    local file
    [[ -e $HOST/disks/$1 ]] || die 5 "there is no block device $1"
    for file in "$HOST"/volumes/*; do
        [[ $(<"$file") == "$1 exposed" ]] || continue
        truncate -s "$(awk -v wwn="${file##*/}" '$2 == wwn { print $3 }' "$HOST/session/$(<$HOST/initiator)")" "/dev/$1"
    done
    echo "SCSI disk rescanned: $1"
}

case "$#:${1:-}" in
1:do_uprescan | 2:dev_rescan) "$@" ;;
*) die 2 "use: security_sudo_v3.sh do_uprescan | dev_rescan NAME" ;;
esac
