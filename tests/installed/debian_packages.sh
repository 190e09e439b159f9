#!/bin/sh
# Builds the Debian packages, lets lintian judge them, looks for what hardens them, installs them into
# a folder, and tries an application there.
# usage: debian_packages.sh SOURCE LIBRARY_FOLDER
# shellcheck disable=SC2016,SC2046
set -eu
export PATH="$PATH:/usr/sbin:/sbin" LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A strict umask, which must not come through.
(umask 077 && "$1/packaging/debian-packages" "$(dpkg --print-architecture)" "$work/packages")
# own_mounts.sh hides a project that lies in /mnt.
cp -R "$(dirname "$0")" "$work/scripts"
cp "$(dirname "$0")/../support/own_mounts.sh" "$work/scripts/"
cp "$(dirname "$0")/../../examples/setting.c" "$work/scripts/application/"
cd "$work"

lintian --allow-root --fail-on error,warning packages/*.deb

mkdir unpacked
for package in packages/*.deb; do
    dpkg-deb -x "$package" unpacked
done
for file in $(find unpacked/usr/bin unpacked/usr/lib -type f ! -path '*/debug/*' -exec grep -l '^.ELF' {} +); do
    readelf -hdW "$file" | tr -d '\n' | grep -q 'Type: *DYN.*BIND_NOW' || { echo "$file: no PIE, or bound late"; exit 1; }
done

# All that there is to depend on is what this machine has of it. A console does without the stand-ins:
# the rest goes first.
mkdir -p root/var/lib/dpkg/info root/var/lib/dpkg/updates
dpkg-query -s $(for package in packages/*.deb; do dpkg-deb -f "$package" Depends; done |
    tr , '\n' | sed -n 's/^ *\([^ ]*\).*/\1/p' | grep -v -e console -e stand-ins | sort -u) >root/var/lib/dpkg/status
scripts/own_mounts.sh sh -euc '
    for packages in "lib*library0_* lib*-dev_* console-status_*" "*stand-ins_*"; do
        (cd packages && dpkg --root="$OLDPWD/root" --log="$OLDPWD/log" -i $packages)
    done >output 2>&1 || { cat output; exit 1; }
    PKG_CONFIG_SYSROOT_DIR="$PWD/root" exec scripts/try_application.sh "$PWD/root/usr" "$1" "$PWD"
' sh "$2"
