#!/bin/sh
# Compares what the library exports with what its public headers declare, in both directions.
# usage: exported_symbols.sh LIBRARY HEADER_FOLDER
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"${NM:-nm}" -D --defined-only --format=posix "$1" | cut -d' ' -f1 | sort >"$work/exported"

# Declarations only: comments and preprocessor lines are dropped, then every name that an argument
# list, an array bracket or the end of a data declaration follows.
sed -e 's://.*::' "$2"/*.h | sed -z -e 's:/\*\([^*]\|\*[^/]\)*\*/::g' | grep -v '^ *#' |
    grep -oE '\b(DAL_CML_|CML_[a-z]|wifi_scan_|NL80211_|os_release)\w*(\(|\[|;)?' |
    grep -E '[([;]$' | tr -d '([;' | sort -u >"$work/declared"

test -s "$work/declared"
diff -u --label documented --label exported "$work/declared" "$work/exported"
