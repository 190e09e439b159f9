#!/bin/sh
# Every name that the library exports is used by one of the test programs, and every setting is known
# to console-status, which can't be run where it is built for another processor.
# usage: exported_names.sh LIBRARY [CONSOLE_STATUS] -- TEST_PROGRAM...
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
nm=${NM:-nm}

$nm -D --defined-only --format=posix "$1" | cut -d' ' -f1 | sort >"$work/exported"
test -s "$work/exported"
shift
console_status=
[ "$1" = -- ] || { console_status=$1 && shift; }
shift
# A program takes its own copy of the library's data, which it then defines.
$nm -D --format=posix "$@" | cut -d' ' -f1 | cut -d@ -f1 | sort -u | comm -23 "$work/exported" - |
    sed 's/$/ is exported, but no test uses it/' >"$work/missing"

[ -z "$console_status" ] || sed -n 's/^DAL_CML_set//p' "$work/exported" |
    while read -r setting; do
        if "$console_status" get "$setting" 2>&1 | grep -q 'no setting'; then
            echo "$setting is a setting, but console-status doesn't know it" >>"$work/missing"
        fi
    done

cat "$work/missing"
! test -s "$work/missing"
