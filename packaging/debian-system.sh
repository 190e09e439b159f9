# A minimal system of another release of Debian, in a folder. Sourced by the scripts that try releases.
# shellcheck shell=sh disable=SC2154

# make_system RELEASE FOLDER: unless it is there already; sets system. MIRROR may name another mirror.
make_system() {
    [ -e "$2/complete" ] || debootstrap --variant=minbase --include=sudo "$1" "$2" ${MIRROR-}
    touch "$2/complete"
    system=$(cd "$2" && pwd)
}

# in_system COMMAND...: pivot_root in place of chroot, in which no user could make namespaces.
in_system() {
    unshare --mount --pid --fork sh -euc '
        mount --bind "$1" "$1"
        cd "$1"
        mount -t proc proc proc
        mount -t sysfs sysfs sys
        mount --rbind /dev dev
        mount -t tmpfs -o mode=1777 tmpfs tmp
        mkdir -p before
        pivot_root . before
        umount -l /before
        shift
        exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM="${TERM-dumb}" "$@"' sh "$system" "$@"
}

# copy_sources FOLDER: as they are, into a folder of the system.
copy_sources() {
    rm -rf "${system:?}/$1"
    mkdir -p "$system/$1"
    tar -c --exclude=./build --exclude=./.git . | tar -x -C "$system/$1"
}
