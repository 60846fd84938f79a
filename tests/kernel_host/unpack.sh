#!/bin/bash
# Sourced by run-in-guest.sh. unpackGuest leaves in GUEST_ROOT a folder with a kernel (uml/) and the tools that the guest needs
# beyond what this machine has (tools/). Packages are downloaded and unpacked there, never installed.
GUEST_PACKAGES=(udev kmod lsscsi sg3-utils open-iscsi sudo busybox-static)

guestRootName() {                            # changes with the list of packages, so an older folder is never taken for it
    echo "root-$(echo "${GUEST_PACKAGES[*]} 2" | cksum | cut -d' ' -f1)"
}

# The named packages even where the machine has them, since their configuration must be as shipped, and what they depend on
# where it has not.
packagesToUnpack() {
    local simulated
    simulated=$(LC_ALL=C apt-get -q -s -o Debug::NoLocking=1 --no-install-recommends install "${GUEST_PACKAGES[@]}" 2>&1) ||
        { echo "$simulated" >&2; return 1; }
    { printf '%s\n' "${GUEST_PACKAGES[@]}"; awk '$1 == "Inst" {print $2}' <<<"$simulated"; } | sort -u
}

downloadAndUnpack() {                        # FOLDER PACKAGE...
    local folder=$1 deb
    shift
    mkdir -p "$folder/debs"
    (cd "$folder/debs" && apt-get -q -o APT::Sandbox::User=root download "$@") || return 1
    for deb in "$folder"/debs/*.deb; do dpkg-deb -x "$deb" "$folder" || return 1; done
    rm -r "$folder/debs"
}

# The machine's /bin, /sbin and /lib are links into /usr; the tools are laid over it and must not hide those links.
mergeIntoUsr() {                             # FOLDER
    local name
    for name in bin sbin lib lib64; do
        [[ -d $1/$name ]] || continue
        mkdir -p "$1/usr/$name"
        cp -a "$1/$name/." "$1/usr/$name/"
        rm -r "${1:?}/$name"
    done
}

fillGuestRoot() {                            # FOLDER
    local packages
    mapfile -t packages < <(packagesToUnpack)
    [[ ${#packages[@]} -gt 0 ]] || return 1
    downloadAndUnpack "$1/tools" "${packages[@]}" && mergeIntoUsr "$1/tools" && downloadAndUnpack "$1/uml" user-mode-linux &&
        chmod 440 "$1/tools/etc/sudoers"     # as the package's own installation does
}

makeGuestRoot() {                            # under the exclusive lock
    local part=$CACHE/part log=$CACHE/unpack.log
    [[ $(dpkg --print-architecture) == amd64 ]] || fail "the kernel host runs on amd64 only"
    say "kernel host: downloading and unpacking its kernel and tools (about 50 MB, once)" >&2
    rm -rf "$part" "$CACHE"/root-*
    mkdir -p "$part"
    if ! fillGuestRoot "$part" >"$log" 2>&1; then
        rm -rf "$part"
        mkdir -p "$part"
        if ! { asRoot apt-get -q update && fillGuestRoot "$part"; } >>"$log" 2>&1 </dev/null; then
            tail -n 15 "$log" >&2
            fail "cannot download the guest's packages; is 'apt-get update' needed? (log: $log)"
        fi
    fi
    [[ -x $part/uml/usr/bin/linux.uml && -x $part/tools/usr/bin/busybox ]] || fail "the packages lack kernel or busybox (log: $log)"
    mv "$part" "$GUEST_ROOT"
}

# Holds a shared lock on descriptor 9 from here on, so that no other run replaces the folder under this one.
unpackGuest() {
    mkdir -p "$CACHE"
    GUEST_ROOT=$CACHE/$(guestRootName)
    exec 9>>"$CACHE/lock"
    flock -s 9
    while [[ ! -d $GUEST_ROOT ]]; do
        flock -u 9
        flock -x 9
        [[ -d $GUEST_ROOT ]] || makeGuestRoot
        flock -s 9
    done
}
