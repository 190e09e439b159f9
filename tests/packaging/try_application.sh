#!/bin/sh
# Builds an application with what is installed under a prefix, once by pkg-config and once by
# find_package, and runs both, and console-status.
# usage: own_mounts.sh try_application.sh PREFIX LIBRARY_FOLDER SCRATCH_FOLDER
set -eu
prefix=$1 libraries=$1/$2 scratch=$3
source=$(dirname "$0")/application

# expect WANTED COMMAND...: the command prints that, and nothing else. Only what runs may find the
# libraries by LD_LIBRARY_PATH; the linker would, too.
expect() {
    wanted=$1
    shift
    got=$(LD_LIBRARY_PATH="$libraries" "$@")
    [ "$got" = "$wanted" ] || { echo "$*: '$got' in place of '$wanted'"; exit 1; }
}

expect 30 "$prefix/bin/console-status" get DisplayOffTimeout

# shellcheck disable=SC2046
"${CC:-cc}" -Wall -Werror "$source/application.c" -o "$scratch/application" \
    $(PKG_CONFIG_LIBDIR="$libraries/pkgconfig" pkg-config --cflags --libs console-manager)
expect 17 "$scratch/application"
expect 17 "$prefix/bin/console-status" get DisplayOffTimeout
expect "" "$prefix/bin/console-status" reset DisplayOffTimeout

# A run path would help the linker, too.
cmake -S "$source" -B "$scratch/build" "-DCMAKE_PREFIX_PATH=$prefix" -DCMAKE_SKIP_RPATH=ON
grep -q "^console-manager_DIR:PATH=$libraries/" "$scratch/build/CMakeCache.txt"
cmake --build "$scratch/build"
expect 17 "$scratch/build/application"
