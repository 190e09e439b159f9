#!/bin/sh
# Installs the components of a build and builds an application with them, also after moving them; and
# configures a product that contains the project.
# usage: installed_files.sh BUILD LIBRARY_FOLDER
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# own_mounts.sh hides a project that lies in /mnt.
cp -R "$(dirname "$0")" "$work/scripts"
cp "$(dirname "$0")/../support/own_mounts.sh" "$work/scripts/"
cp "$(dirname "$0")/../../examples/setting.c" "$work/scripts/application/"

# refuses_to_find SENTENCE ARGUMENT...: find_package fails with that sentence.
refuses_to_find() {
    sentence=$1
    shift
    cmake -S "$work/scripts/application" -B "$work/refused" "-DCMAKE_PREFIX_PATH=$work/installed" "$@" \
        >"$work/output" 2>&1 && { echo "found, in place of '$sentence'"; exit 1; }
    tr -s ' \n' ' ' <"$work/output" | grep -q "$sentence" || { cat "$work/output"; exit 1; }
}

cmake --install "$1" --prefix "$work/installed" --component development
refuses_to_find "component runtime is not installed"
for component in runtime stand-ins console-status; do
    cmake --install "$1" --prefix "$work/installed" --component $component
done
refuses_to_find "console-manager has no components: Wifi" -DCOMPONENTS=Wifi

defined=$(PKG_CONFIG_LIBDIR="$work/installed/$2/pkgconfig" pkg-config --define-prefix --cflags console-manager)
[ "${defined% }" = "-I$work/installed/include" ] || { echo "with --define-prefix: $defined"; exit 1; }
"$work/scripts/own_mounts.sh" "$work/scripts/try_application.sh" "$work/installed" "$2" "$work"
mv "$work/installed" "$work/moved"
cmake -S "$work/scripts/application" -B "$work/moved/build" "-DCMAKE_PREFIX_PATH=$work/moved"
cmake --build "$work/moved/build"
cmake -S "$work/scripts/product" -B "$work/product" "-DCONSOLE_MANAGER=$(cd "$(dirname "$0")/../.." && pwd)"
