#!/bin/sh
# Installs Debian packages into a folder of their own and tries them there, also over those of 0.1.0.
# usage: own_mounts.sh try_packages.sh PACKAGES LIBRARY_FOLDER SCRATCH_FOLDER
# shellcheck disable=SC2046,SC2086
set -eu
scripts=$(cd "$(dirname "$0")" && pwd)
packages=$1 libraries=$2
cd "$3"

# An empty system that has all packages of this machine that ours depend on.
empty_system() {
    rm -rf root
    mkdir -p root/var/lib/dpkg/info root/var/lib/dpkg/updates root/usr/lib
    dpkg-query -s $(for package in "$packages"/*.deb; do dpkg-deb -f "$package" Depends; done |
        tr , '\n' | sed -n 's/^ *\([^ ]*\).*/\1/p' | grep -v -e console -e stand-ins | sort -u) >root/var/lib/dpkg/status
}
in_system() {
    dpkg --root="$PWD/root" --log="$PWD/log" --force-script-chrootless --auto-deconfigure "$@" >output 2>&1
}
install() {
    in_system -i "$@"
}
fail() {
    cat output
    echo "$*"
    exit 1
}
# owned_by PACKAGE: all packages are configured, and this one owns console-status.
owned_by() {
    dpkg-query --admindir="$PWD/root/var/lib/dpkg" -W -f '${db:Status-Abbrev} ${Package}\n' >output
    ! grep -v '^ii' output || fail "not all packages are configured"
    in_system -S /usr/bin/console-status || :
    grep -q "^$1[:,]" output || fail "console-status isn't from $1"
}

library=$(echo "$packages"/libm7-console-manager-library0_*)
program=$(echo "$packages"/console-status_*)
stand_ins=$(echo "$packages"/libm7-platform-stand-ins_*)

# Until 0.1.0 the library's package had the program.
mkdir -p old/DEBIAN old/usr/bin
sed '/^\(Pre-\)\?Depends/d; s/^Version: .*/Version: 0.1.0/' >old/DEBIAN/control <<END
$(dpkg-deb -I "$library" control)
END
echo old >old/usr/bin/console-status
dpkg-deb -b old old.deb >output
for order in "$library $program" "$program $library"; do
    empty_system
    install old.deb || fail "the old package can't be installed"
    for package in $order; do
        install "$package" || :  # the first may have to wait for the second
    done
    in_system --configure -a || fail "no upgrade in the order $order"
    owned_by console-status
    in_system -r console-status || fail "console-status can't be removed"
    install old.deb || fail "no way back"
    owned_by libm7-console-manager-library0
    in_system -r libm7-console-manager-library0 || fail "no removal"
done

# A console's closed libraries are not replaced; without them the stand-ins can be installed, and again.
empty_system
install "$library" "$packages"/*-dev_* "$program" || fail "the packages of a console can't be installed"
: >root/usr/lib/libqor-core.so.2
! install "$stand_ins" || fail "the stand-ins are installed next to a closed library"
grep -q "/usr/lib/libqor-core.so.2 is not from this package" output || fail "no clear refusal"
rm root/usr/lib/libqor-core.so.2
install "$stand_ins" && install "$stand_ins" || fail "the stand-ins can't be installed"

PKG_CONFIG_SYSROOT_DIR="$PWD/root" exec "$scripts/try_application.sh" "$PWD/root/usr" "$libraries" "$PWD"
