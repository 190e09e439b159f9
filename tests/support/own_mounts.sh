#!/bin/sh
# Runs a command with folders of its own where the library writes, and as root of its own world;
# status 77 where namespaces are refused.
# usage: own_mounts.sh COMMAND ARGUMENT...
set -eu
unshare=unshare
[ "$(id -u)" -eq 0 ] || unshare="unshare -r"
$unshare -m true || exit 77
mkdir -p /tmp/m7
exec $unshare -m sh -ec 'mount -t tmpfs none /tmp/m7; mount -t tmpfs none /mnt; exec "$@"' sh "$@"
