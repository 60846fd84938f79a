#!/bin/sh
# First program of the guest, run by a static busybox. The machine's / is mounted read-only; overlays put the tools and this
# run's own files over it and a tmpfs on top, so that the guest may write anywhere and nothing of it stays. $RUN, this run's
# folder on the machine, comes from the kernel's command line. A new process costs 15 to 60 ms here: hence so few of them.
B=$RUN/busybox
$B mount -t proc proc /proc                    # from here on busybox finds itself under /proc/self/exe
mount -t tmpfs tmpfs /mnt
mkdir /mnt/up /mnt/work /mnt/new /mnt/plain /mnt/tools /mnt/host /mnt/run
mount -t hostfs -o "$RUN" none /mnt/run
# shellcheck source=/dev/null
. /mnt/run/settings                            # MODULES, and the mount points as arguments
insmod "$MODULES"/*/kernel/fs/overlayfs/overlay.ko
mount -a -T /mnt/run/fstab
mkdir -p "$@"
mount -a -T /mnt/run/fstab.late
# The first process itself changes its root; udevadm would take anything else for a chroot and do nothing.
exec "$B" chroot /mnt/new /run/kernel-host/busybox sh /run/kernel-host/start
