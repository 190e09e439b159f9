#!/bin/sh
# Builds the reference of the public headers, which has to go without a warning, and looks up every
# name that the library exports: each must have a description.
# usage: reference.sh LIBRARY DOXYFILE
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

{
    cat "$2"
    echo "OUTPUT_DIRECTORY = \"$work\""
    echo "GENERATE_XML = YES"
} | "${DOXYGEN:-doxygen}" -

"${NM:-nm}" -D --defined-only --format=posix "$1" | cut -d' ' -f1 | sort >"$work/exported"
awk -F '[<>]' '
    /<name>/ { name = $3 }
    /<\/memberdef>/ { name = "" }
    /<(brief|detailed)description>/ { description = 1 }
    /<\/(brief|detailed)description>/ { description = 0 }
    description && name != "" && /<para>/ && !/<para><\/para>/ { print name }
' "$work"/xml/*_8h.xml | sort -u >"$work/described"

test -s "$work/exported"
comm -23 "$work/exported" "$work/described" >"$work/missing"
if [ -s "$work/missing" ]; then
    echo "exported, but not described in the reference:"
    cat "$work/missing"
    exit 1
fi
