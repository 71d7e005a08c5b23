#!/usr/bin/env bash
# Makes the environment in which Windows programs run on this machine: a Debian 13 folder with Wine, a Direct3D 11
# on top of Vulkan, software drivers and an X server without a screen. It lies in a cache outside the checkout:
# ${XELT_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/xeltrender}. A step that has finished is not repeated.
set -eu -o pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source=packaging/setup.sh
. "$here/../setup.sh"
# shellcheck source=packaging/windows/common.sh
. "$here/common.sh"

# The fonts are those that the tests on Linux have.
packages="wine64 wine dxvk dxvk-wine64 mesa-vulkan-drivers libgl1-mesa-dri libegl1 libgl1 libvulkan1 xvfb xauth
    fonts-dejavu-core fonts-wqy-microhei"
root="$xelt_windows_root"

# step NAME FUNCTION: unless it has finished before; the stamp comes last.
step() {
    [ ! -e "$root/stamp/$1" ] || return 0
    echo "Run-time environment: $1" >&2
    "$2"
    xelt_as_root mkdir -p "$root/stamp"
    xelt_as_root touch "$root/stamp/$1"
}

make_base() {
    # What an interrupted run has left is not to be trusted.
    xelt_as_root rm -rf --one-file-system "$root"
    mkdir -p "$(dirname "$root")"
    xelt_as_root debootstrap --variant=minbase trixie "$root"
}

install_packages() {
    xelt_as_root cp /etc/resolv.conf "$root/etc/resolv.conf"
    # shellcheck disable=SC2016,SC2086 # expanded by the inner shell; one word for each package
    xelt_chroot '
        xelt_in apt-get update -qq
        xelt_in DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@"
        xelt_in apt-get clean' $packages
}

# Direct3D 11 and DXGI of the prefix become those on top of Vulkan.
make_prefix() {
    # shellcheck disable=SC2016
    xelt_chroot '
        rm -rf "$root/root/prefix"
        xelt_in WINEPREFIX=/root/prefix WINEDEBUG=-all xvfb-run -a sh -c "wineboot -i && wineserver -w"
        for library in d3d11 dxgi; do
            ln -sf /usr/lib/dxvk/wine64/$library.dll.so "$root/root/prefix/drive_c/windows/system32/$library.dll"
        done'
    # For run.sh: programs that run at the same time have a copy of it each.
    xelt_as_root rm -rf "$root/slots"
    xelt_as_root install -d -o "$(id -u)" "$root/slots"
}

mkdir -p "$xelt_cache"
exec {lock}> "$xelt_cache/windows-root.lock"
flock "$lock"
step base make_base
step "packages-$(printf %s "$packages" | cksum | cut -d ' ' -f 1)" install_packages
step prefix make_prefix
echo "$root"
