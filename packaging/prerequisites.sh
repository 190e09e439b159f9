# The Debian packages that the project needs, and their installation. Sourced by the scripts.
# shellcheck shell=sh disable=SC2034

BUILD_PACKAGES="g++ cmake ninja-build libsqlite3-dev libmnl-dev nlohmann-json3-dev"
PACKAGING_PACKAGES="$BUILD_PACKAGES debhelper dpkg-dev"
# llvm: the lines in what the sanitizers report.
TEST_PACKAGES="$PACKAGING_PACKAGES pkg-config libgtest-dev libbenchmark-dev clang libclang-rt-dev llvm \
    clang-format clang-tidy valgrind iproute2 iputils-ping procps doxygen lintian \
    python3-prometheus-client"
BOARD_PACKAGES="$PACKAGING_PACKAGES g++-arm-linux-gnueabihf qemu-system-arm cpio kmod"
ARM64_PACKAGES="$PACKAGING_PACKAGES g++-aarch64-linux-gnu qemu-user"

AS_ROOT=
[ "$(id -u)" -eq 0 ] || AS_ROOT=sudo

# install_packages NAME...: installs what is missing, and says so.
install_packages() {
    missing=
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "Installing Debian packages:$missing" >&2
    # If this fails, the installation may still succeed with the lists that there are.
    $AS_ROOT apt-get update -qq || echo "Going on with the package lists that there are" >&2
    # shellcheck disable=SC2086
    $AS_ROOT env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        $missing >/dev/null
}
