#!/bin/bash
# lsscsi of the simulated host: a line for each disk, and those of the file lsscsi, which is where a test puts a device that is not settled.
HOST=/run/simulated-host
shopt -s nullglob
for disk in "$HOST"/disks/*; do printf '[2:0:0:0]    disk    EXAMPLE  SIMULATED        1     /dev/%s\n' "${disk##*/}"; done
[[ ! -e $HOST/lsscsi ]] || cat "$HOST/lsscsi"
