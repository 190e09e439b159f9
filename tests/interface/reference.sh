#!/bin/sh
# Builds the reference of the public headers, which has to go without a warning, and looks up every
# name that the library exports: each must have a description of its own.
# usage: reference.sh LIBRARY DOXYFILE
set -eu
export LC_ALL=C
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
    /<(brief|detailed)description>/ { description = $2 }
    /<\/(brief|detailed)description>/ { description = "" }
    description != "" && name != "" && /<para>/ && !/<para><\/para>/ { print name, description, $0 }
' "$work"/xml/*_8h.xml | sort >"$work/descriptions"
cut -d' ' -f1 "$work/descriptions" | uniq >"$work/described"

test -s "$work/exported"
comm -23 "$work/exported" "$work/described" >"$work/missing"
if [ -s "$work/missing" ]; then
    echo "exported, but not described in the reference:"
    cat "$work/missing"
    exit 1
fi

# A comment that was copied from another function and left as it was.
join "$work/exported" "$work/descriptions" | grep ' briefdescription ' | cut -d' ' -f2- | sort |
    uniq -d >"$work/shared"
if [ -s "$work/shared" ]; then
    echo "the description of several functions:"
    cat "$work/shared"
    exit 1
fi
