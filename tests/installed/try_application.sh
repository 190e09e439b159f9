#!/bin/sh
# Builds an example with what is installed under a prefix, once by pkg-config and once by find_package,
# and runs both and console-status, whose completion must know its commands.
# usage: own_mounts.sh try_application.sh PREFIX LIBRARY_FOLDER SCRATCH_FOLDER
set -eu
prefix=$1 libraries=$1/$2 scratch=$3
source=$(dirname "$0")/application

# expect WANTED COMMAND...: the command prints that and nothing else. LD_LIBRARY_PATH is set for programs
# alone, because the linker would use it, too.
expect() {
    wanted=$1
    shift
    got=$(LD_LIBRARY_PATH="$libraries" "$@")
    [ "$got" = "$wanted" ] || { echo "$*: '$got' in place of '$wanted'"; exit 1; }
}

expect EN "$prefix/bin/console-status" get Language
expect get bash -c '. "$1/share/bash-completion/completions/console-status"
    COMP_LINE="console-status ge" COMP_POINT=17
    _console_status "$1/bin/console-status"
    echo "${COMPREPLY[@]}"' bash "$prefix"

# shellcheck disable=SC2046
"${CC:-cc}" -Wall -Werror "$source/setting.c" -o "$scratch/application" \
    $(PKG_CONFIG_LIBDIR="$libraries/pkgconfig" pkg-config --cflags --libs console-manager)
expect DE "$scratch/application" DE
expect DE "$prefix/bin/console-status" get Language
expect "" "$prefix/bin/console-status" reset Language

# A run path would also help the linker.
cmake -S "$source" -B "$scratch/build" "-DCMAKE_PREFIX_PATH=$prefix" -DCMAKE_SKIP_RPATH=ON
grep -q "^console-manager_DIR:PATH=$libraries/" "$scratch/build/CMakeCache.txt"
cmake --build "$scratch/build"
expect DE "$scratch/build/application" DE
