#!/bin/sh
# Builds the Debian packages, checks them with lintian, checks that programs and libraries are hardened,
# and installs the packages into a folder.
# usage: debian_packages.sh SOURCE LIBRARY_FOLDER
# shellcheck disable=SC2046
set -eu
export PATH="$PATH:/usr/sbin:/sbin" LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A strict umask must not reach the packages.
(umask 077 && "$1/packaging/debian-packages" "$(dpkg --print-architecture)" "$work/packages")
# own_mounts.sh hides a project that lies in /mnt.
cp -R "$(dirname "$0")" "$work/scripts"
cp "$(dirname "$0")/../support/own_mounts.sh" "$work/scripts/"
cp "$(dirname "$0")/../../examples/setting.c" "$work/scripts/application/"
cd "$work"

lintian --allow-root --pedantic --fail-on error,warning,pedantic packages/*.deb

mkdir unpacked
for package in packages/*.deb; do
    dpkg-deb -x "$package" unpacked
done
for file in $(find unpacked/usr/bin unpacked/usr/lib -type f ! -path '*/debug/*' -exec grep -l '^.ELF' {} +); do
    readelf -hdW "$file" | tr -d '\n' | grep -q 'Type: *DYN.*BIND_NOW' || { echo "$file: not hardened"; exit 1; }
done

scripts/own_mounts.sh scripts/try_packages.sh "$PWD/packages" "$2" "$PWD"
