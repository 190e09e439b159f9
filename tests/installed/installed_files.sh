#!/bin/sh
# Installs the components of a build, moves all elsewhere, and tries an application there.
# usage: installed_files.sh BUILD LIBRARY_FOLDER
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# own_mounts.sh hides a project that lies in /mnt.
cp -R "$(dirname "$0")" "$work/scripts"
cp "$(dirname "$0")/../support/own_mounts.sh" "$work/scripts/"
cp "$(dirname "$0")/../../examples/setting.c" "$work/scripts/application/"

for component in runtime development stand-ins console-status; do
    cmake --install "$1" --prefix "$work/installed" --component $component
done
mv "$work/installed" "$work/moved"
"$work/scripts/own_mounts.sh" "$work/scripts/try_application.sh" "$work/moved" "$2" "$work"
