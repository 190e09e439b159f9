#!/bin/sh
# Builds the Debian packages of a build and checks what is in them. Those for this machine are
# installed into a folder, and an application is tried there.
# usage: debian_packages.sh BUILD TRIPLET VERSION
# shellcheck disable=SC2016,SC2046,SC2086,SC2231
set -eu
build=$1 triplet=$2 version=$3
export PATH="$PATH:/usr/sbin:/sbin" LC_ALL=C
architecture=$(dpkg-architecture -t "$triplet" -q DEB_HOST_ARCH) || exit 77
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# own_mounts.sh hides a project that lies in /mnt.
cp -R "$(dirname "$0")" "$work/scripts"
cd "$work"
runtime=libm7-console-manager-library0
development=libm7-console-manager-library-dev
stand_ins=libm7-platform-stand-ins

fail() {
    echo "$*" >&2
    exit 1
}

deb() {
    echo "$work/$1_${version}_$architecture.deb"
}

# A strict umask, which must not come through.
(umask 077 && cpack --config "$build/CPackConfig.cmake" -B "$work") >log 2>&1 || fail "$(cat log)"

# Architecture, recommended packages, and files with their rights.
for package in $runtime $development $stand_ins; do
    dpkg-deb -W --showformat '${Package} ${Architecture} (${Recommends})\n' "$(deb $package)"
    dpkg-deb -c "$(deb $package)" |
        sed -E -e '/^drwxr-xr-x root\/root .*\/$/d' -e 's,^(\S+ \S+) .*:[0-9]{2} \.,\1 ,' \
            -e 's,[a-z]+\.h$,*.h,' | uniq
    mkdir $package
    dpkg-deb -x "$(deb $package)" $package
done >contents
library=/usr/lib/$triplet
diff -u --label wanted --label packaged - contents <<END
$runtime $architecture (iputils-ping, $stand_ins)
-rwxr-xr-x root/root /usr/bin/console-status
lrwxrwxrwx root/root $library/libm7-console-manager-library.so.0 -> libm7-console-manager-library.so.$version
-rw-r--r-- root/root $library/libm7-console-manager-library.so.$version
$development $architecture ()
-rw-r--r-- root/root /usr/include/console-manager/*.h
-rw-r--r-- root/root $library/cmake/console-manager/console-manager-config-version.cmake
-rw-r--r-- root/root $library/cmake/console-manager/console-manager-config.cmake
lrwxrwxrwx root/root $library/libm7-console-manager-library.so -> libm7-console-manager-library.so.0
-rw-r--r-- root/root $library/pkgconfig/console-manager.pc
$stand_ins $architecture ()
lrwxrwxrwx root/root $library/libm7-data-access-library.so.0 -> libm7-data-access-library.so.0.1.0
-rw-r--r-- root/root $library/libm7-data-access-library.so.0.1.0
lrwxrwxrwx root/root $library/libm7-trace-debug.so.0 -> libm7-trace-debug.so.0.1.0
-rw-r--r-- root/root $library/libm7-trace-debug.so.0.1.0
lrwxrwxrwx root/root $library/libqor-core.so.2 -> libqor-core.so.2.0.0
-rw-r--r-- root/root $library/libqor-core.so.2.0.0
END

# Every link's name is the soname of what it leads to, and the control file says so.
for package in $runtime $stand_ins; do
    for link in $package$library/*.so.?; do
        soname=$(readelf -d "$link" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
        [ "$soname" = "${link##*/}" ] || fail "$link has the soname $soname"
        echo "${soname%.so.*} ${soname##*.} $package (>= $version)"
    done >sonames
    dpkg-deb -I "$(deb $package)" shlibs | diff -u sonames -
    dpkg-deb -I "$(deb $package)" triggers | grep -qx 'activate-noawait ldconfig'
done

# listed PACKAGE NAME VERSION: the package depends on that version or a later one.
listed() {
    least=$(dpkg-deb -f "$(deb "$1")" Depends | tr ',' '\n' | sed -n "s/^ *$2 (>= \(.*\))/\1/p")
    dpkg --compare-versions "$least" ge "$3" || fail "$1 needs $2 $3, and says '$least'"
}

# newest PREFIX FILE...: of the symbol versions that the files need.
newest() {
    prefix=$1
    shift
    readelf -VW "$@" | grep -oE "Name: ${prefix}_[0-9.]+" | sort -uV | sed -n '$s/.*_//p'
}

# A library's package has the number of its newest symbols, for the two that differ between processors.
for package in $runtime $stand_ins; do
    files=$(find $package -type f)
    listed $package libc6 "$(newest GLIBC $files)"
    listed $package libgcc-s1 "$(newest GCC $files)"
done
depends=$(dpkg-deb -f "$(deb $development)" Depends)
[ "$depends" = "$runtime (= $version)" ] || fail "$development depends on $depends"

[ "$architecture" = "$(dpkg --print-architecture)" ] || exit 0

mkdir debian
printf 'Source: any\n\nPackage: any\nArchitecture: any\n' >debian/control
for package in $runtime $stand_ins; do
    dpkg-shlibdeps -O --ignore-missing-info "-l$PWD/$runtime$library" "-l$PWD/$stand_ins$library" \
        $(find $package -type f) 2>log >needed || fail "$(cat log)"
    sed -i -e 's/^shlibs:Depends=//' -e 's/, /\n/g' needed
    sed 's/ .*//' needed >names
    dpkg-deb -f "$(deb $package)" Depends | sed -e 's/, /\n/g' | sed 's/ .*//' |
        diff -u --label needed --label listed names -
    while read -r name _ least; do
        listed $package "$name" "${least%)}"
    done <needed
    cat names >>dependencies
done

# All that there is to depend on is what this machine has of it. The first two packages do without
# the stand-ins, as on a console that has the real libraries.
mkdir -p root/var/lib/dpkg/info root/var/lib/dpkg/updates
dpkg-query -s $(sort -u dependencies) >root/var/lib/dpkg/status
scripts/own_mounts.sh sh -euc '
    dpkg="dpkg --root=$PWD/root --log=$PWD/dpkg.log"
    $dpkg -i "$1" "$2" >log 2>&1 && $dpkg -i "$3" >log 2>&1 || { cat log; exit 1; }
    exec scripts/try_application.sh "$PWD/root/usr" "$4" "$PWD"
' sh "$(deb $runtime)" "$(deb $development)" "$(deb $stand_ins)" "lib/$triplet"
