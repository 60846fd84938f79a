#!/bin/bash
# The first program of the simulated host: start.sh FRESH-IPC PRELOADED-LIBRARY COMMAND...
set -euo pipefail
fresh=$1 library=$2
shift 2
HOST=/run/simulated-host
mkdir -p /dev/disk/by-id $HOST/disks $HOST/volumes
echo iqn.2024-01.com.example:simulated-host >$HOST/initiator
[[ -n $fresh ]] || ipcmk -S 1 >/dev/null       # the first semaphore set of a namespace gets id 0
export LD_PRELOAD=$library
exec "$@"
