#!/bin/bash
# Runs a command on a simulated host: this machine's files, but a /dev, /opt, /run and /tmp, a network, processes and System V IPC of its
# own (bubblewrap), where disks are plain files that answer as SCSI disks do. Needs no kernel of its own, no privileges, installs nothing.
#   run-in-host.sh [--limit SECONDS] [--fresh-ipc] BUILD -- COMMAND [ARGUMENT...]
# BUILD         the build's folder, which holds lib/libsimulated_ioctl.so
# --limit       ends the host after that time (default 120)
# --fresh-ipc   no semaphore set exists yet, so that the first one gets id 0; without it one exists
# There: the rescan script under /opt/root_tool/common brings the disks of an array's exposure "tree" (see README.md), sudo runs what it is
# given, lsscsi lists the disks. The command starts in the current folder as root of that host, with PATH, HOME, TERM, TMPDIR=/tmp, the
# sanitizers' options and the preloaded ioctl as its whole environment; this machine's files are read-only, nothing stays.
# Exit status: the command's; 124 time limit; 125 the host could not start; 2 wrong arguments. Several hosts may run at once.
set -euo pipefail
HERE=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
# shellcheck source=scripts/common.sh
source "$HERE/../../scripts/common.sh"

fail() { die "$1" 125; }

parseArguments() {
    limit=120 fresh="" build="" command=()
    while [[ $# -gt 0 ]]; do
        case $1 in
        --limit) limit=${2:-}; shift; [[ $limit =~ ^[1-9][0-9]{0,4}$ ]] || die "--limit takes whole seconds" 2 ;;
        --fresh-ipc) fresh=yes ;;
        --help | -h) usage; exit 0 ;;
        --) shift; command=("$@"); break ;;
        -*) die "unknown argument $1 (see --help)" 2 ;;
        *) [[ -z $build ]] || die "two folders given (see --help)" 2
            build=$1 ;;
        esac
        shift
    done
    [[ -e $build/lib/libsimulated_ioctl.so ]] || die "${build:-no folder} is no build with lib/libsimulated_ioctl.so (see --help)" 2
    build=$(cd "$build" && pwd)
    [[ ${#command[@]} -gt 0 ]] || die "no command given: run-in-host.sh [OPTION...] BUILD -- COMMAND" 2
}

describeHost() {                             # bubblewrap's arguments: later ones lie over earlier ones
    local folder name
    host=(--unshare-user --uid 0 --gid 0 --unshare-pid --unshare-ipc --unshare-net --unshare-uts --hostname simulated-host
        --die-with-parent --ro-bind / / --proc /proc --dev /dev)
    for folder in /opt /run /tmp; do host+=(--tmpfs "$folder"); done
    mkdir -p "$build/lib/logs"                 # of the log library; what is written there vanishes with the host
    for folder in "$TOP" "$PWD" "$build"; do host+=(--ro-bind "$folder" "$folder"); done
    host+=(--tmpfs "$build/lib/logs" --ro-bind "$HERE/host/security_sudo_v3.sh" /opt/root_tool/common/security_sudo_v3.sh)
    for name in sudo lsscsi; do host+=(--ro-bind "$HERE/host/$name.sh" "/run/simulated-host/bin/$name"); done
    host+=(--chdir "$PWD" --clearenv --setenv PATH "/run/simulated-host/bin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"
        --setenv HOME /tmp --setenv TMPDIR /tmp --setenv TERM "${TERM:-dumb}")
    # The preloaded library stands before the sanitizer's runtime; that is right, since it replaces nothing of it.
    host+=(--setenv ASAN_OPTIONS "${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0")
    for name in UBSAN_OPTIONS TSAN_OPTIONS LSAN_OPTIONS; do [[ -z ${!name:-} ]] || host+=(--setenv "$name" "${!name}"); done
}

parseArguments "$@"
command -v bwrap >/dev/null || fail "bwrap is missing; install the package bubblewrap"
bwrap --unshare-user --ro-bind / / true || fail "bwrap cannot make a user namespace here (sysctl kernel.unprivileged_userns_clone, or the container's settings)"
describeHost
exec timeout --verbose --foreground -k 5 "$limit" bwrap "${host[@]}" -- "$HERE/host/start.sh" "$fresh" "$build/lib/libsimulated_ioctl.so" "${command[@]}"
