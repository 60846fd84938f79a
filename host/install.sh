#!/bin/bash
# Puts the privileged rescan script and its sudoers entry on this host. Run it as root.
#   install.sh [--user NAME]      install; NAME (the account of the backup application) joins groups brevan and disk
#   install.sh --check [--user NAME]   say what is missing or unsafe, one line each; exit status 1 if anything is
#   install.sh --uninstall        take script and sudoers entry away; group and accounts stay
set -euo pipefail
export PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C

HERE=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
FOLDER=/opt/root_tool/common
SCRIPT=$FOLDER/security_sudo_v3.sh
SUDOERS=/etc/sudoers.d/brevan
GROUP=brevan

die() { echo "install.sh: $1" >&2; exit "${2:-1}"; }

install_() {
    [[ -z $user ]] || getent passwd "$user" >/dev/null || die "there is no user $user"
    command -v visudo >/dev/null || die "sudo is not installed (apt-get install sudo)"
    visudo -cqf "$HERE/sudoers.d/brevan" || die "this sudo cannot read $HERE/sudoers.d/brevan"
    getent group "$GROUP" >/dev/null || groupadd --system "$GROUP"
    install -d -o root -g root -m 755 "${FOLDER%/*}" "$FOLDER"
    install -o root -g root -m 755 "$HERE/security_sudo_v3.sh" "$SCRIPT"
    install -d -o root -g root -m 755 "${SUDOERS%/*}"
    install -o root -g root -m 440 "$HERE/sudoers.d/brevan" "$SUDOERS"
    [[ -z $user ]] || usermod -a -G "$GROUP,disk" "$user"
    echo "installed $SCRIPT and $SUDOERS"
}

uninstall() {
    rm -f "$SCRIPT" "$SUDOERS"
    rmdir "$FOLDER" "${FOLDER%/*}" 2>/dev/null || true
    echo "removed $SCRIPT and $SUDOERS"
}

problem() { echo "install.sh: $1" >&2; problems=$((problems + 1)); }

checkFile() {                                # INSTALLED SOURCE MODE: same content, root's own, with that mode
    if [[ ! -f $1 ]]; then problem "$1 is missing"; return; fi
    cmp -s "$1" "$2" || problem "$1 differs from $2"
    [[ $(stat -c '%u %a' "$1") == "0 $3" ]] || problem "$1 must belong to root with mode $3"
}

checkFolders() {                             # FILE: nobody but root can replace a part of its path
    local path=$1 paths=(/) owner mode
    while path=${path%/*}; [[ -n $path ]]; do [[ ! -d $path ]] || paths+=("$path"); done
    while read -r owner mode path; do
        [[ $mode == d* ]] || problem "$path is a symbolic link"
        [[ $owner == 0 ]] || problem "$path must belong to root"
        [[ $mode != ?????w* && $mode != ????????w* ]] || problem "$path can be written by others than root"
    done < <(stat -c '%u %A %n' "${paths[@]}")
}

checkUser() {
    local group groups
    groups=" $(id -nG "$user" 2>/dev/null) " || { problem "there is no user $user"; return; }
    for group in "$GROUP" disk; do
        [[ $groups == *" $group "* ]] || problem "user $user is not in group $group"
    done
}

check() {
    local tool
    problems=0
    checkFile "$SCRIPT" "$HERE/security_sudo_v3.sh" 755
    checkFile "$SUDOERS" "$HERE/sudoers.d/brevan" 440
    checkFolders "$SCRIPT"
    checkFolders "$SUDOERS"
    getent group "$GROUP" >/dev/null || problem "group $GROUP is missing"
    for tool in sudo visudo flock udevadm iscsiadm lsscsi; do
        command -v "$tool" >/dev/null || problem "command $tool is missing"
    done
    ! command -v visudo >/dev/null || visudo -c >/dev/null || problem "visudo finds errors in the sudoers files"
    [[ -z $user ]] || checkUser
    [[ $problems -eq 0 ]] || exit 1
    echo "$SCRIPT and $SUDOERS are in place"
}

action=install_ user=""
while [[ $# -gt 0 ]]; do
    case $1 in
    --check) action=check ;;
    --uninstall) action=uninstall ;;
    --user) [[ -n ${2:-} ]] || die "--user needs a name" 2; user=$2; shift ;;
    --help | -h) sed -n '2,5s/^# \{0,1\}//p' "$0"; exit 0 ;;
    *) die "unknown argument $1 (see --help)" 2 ;;
    esac
    shift
done
[[ $EUID -eq 0 ]] || die "this must run as root"
"$action"
