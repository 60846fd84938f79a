#!/bin/sh
# Second stage of the guest's first program, in its final root: modules, daemons, the command, and its exit status.
OWN=/run/kernel-host                           # this run's folder on the machine
step() { read -r up _ </proc/uptime; echo "guest $up s: $*"; }
finish() {                                     # STATUS: hand it over and switch off
    step "finished with status $1"
    echo "$1" >$OWN/status
    poweroff -f
    sleep 60
}
# shellcheck source=/dev/null
. $OWN/settings                                # HOST_UID
step "file systems"
modprobe -a configfs sd_mod sg target_core_mod target_core_file iscsi_target_mod iscsi_tcp ||
    { echo "guest: a kernel module is missing"; finish 125; }
mount -t configfs configfs /sys/kernel/config
ifconfig lo 127.0.0.1 up
echo kernel-host >/proc/sys/kernel/hostname
cp -a $OWN/dev/. /dev/
step "modules"
# shellcheck source=tests/kernel_host/guest/own.sh
[ "$HOST_UID" = 0 ] || . $OWN/own.sh           # as root of the machine the files have the right owner already
# No `udevadm trigger`: disks that come later send their own events.
/lib/systemd/systemd-udevd --daemon 2>/dev/null
/usr/sbin/iscsid
# The first semaphore set of a kernel gets id 0, which is a case of its own and no host's usual one.
/usr/bin/ipcmk -S 1 >/dev/null
stty -F /dev/ttyS0 raw
mkfifo /run/output                             # a pipe, as the command has it outside; it leaves over the serial line
cat /run/output >/dev/ttyS0 &
copier=$!
step "ready"
env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb TMPDIR=/tmp \
    /bin/bash $OWN/command >/run/output 2>&1 </dev/null
status=$?
# A daemon that the command left behind may hold the pipe open: all that came so far leaves, no more.
for _ in 1 2 3 4 5 6 7 8 9 10; do kill -0 $copier 2>/dev/null || break; sleep 0.05; done
stty -F /dev/ttyS0 raw                         # returns when the line is empty
finish $status
