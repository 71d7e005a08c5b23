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
packages="wine64 wine mesa-vulkan-drivers libgl1-mesa-dri libegl1 libgl1 libvulkan1 xvfb xauth
    fonts-dejavu-core fonts-wqy-microhei"
build_packages="g++-mingw-w64-x86-64-posix meson ninja-build glslang-tools libvulkan-dev spirv-headers dpkg-dev patch"
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

# Direct3D 11 and DXGI on top of Vulkan: Debian's DXVK with one fault mended, without which a test waits for ever now
# and then. It is built with less effort than it could be, because the driver that does the drawing takes the time.
make_direct3d() {
    xelt_as_root cp /etc/resolv.conf "$root/etc/resolv.conf"
    # shellcheck disable=SC2016,SC2086 # expanded by the inner shell; one word for each package
    xelt_chroot '
        work=/root/direct3d
        patch="$1"
        shift
        rm -rf "$root$work" "$root/opt/direct3d"
        mkdir -p "$root$work"
        cp "$patch" "$root$work/dxvk.patch"
        xelt_in sed -n "s/^deb /deb-src /p" /etc/apt/sources.list > "$root/etc/apt/sources.list.d/sources.list"
        xelt_in apt-get update -qq
        xelt_in DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@"
        xelt_in sh -eu -c "
            cd $work
            apt-get source -qq dxvk
            cd dxvk-*/
            # Without fuzz: the edit either fits or ends this.
            patch --strip=1 --fuzz=0 < $work/dxvk.patch
            mkdir -p include/vulkan/include include/spirv/include subprojects
            ln -s /usr/include/vulkan /usr/include/vk_video include/vulkan/include
            ln -s /usr/include/spirv include/spirv/include
            rm -rf subprojects/libdisplay-info
            ln -s ../libdisplay-info subprojects/libdisplay-info
            meson setup build --cross-file build-win64.txt --buildtype=plain -Doptimization=1 -Denable_d3d8=false \
                -Denable_d3d9=false -Denable_d3d10=false
            ninja --quiet -C build src/d3d11/d3d11.dll src/dxgi/dxgi.dll
            mkdir /opt/direct3d
            cp build/src/d3d11/d3d11.dll build/src/dxgi/dxgi.dll /opt/direct3d"
        xelt_in DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq --autoremove "$@"
        xelt_in apt-get clean
        rm -rf "$root$work" "$root/etc/apt/sources.list.d/sources.list"' "$here/dxvk.patch" $build_packages
}

make_prefix() {
    # shellcheck disable=SC2016
    xelt_chroot '
        rm -rf "$root/root/prefix"
        xelt_in WINEPREFIX=/root/prefix WINEDEBUG=-all xvfb-run -a sh -c "wineboot -i && wineserver -w"
        for library in d3d11 dxgi; do
            ln -sf /opt/direct3d/$library.dll "$root/root/prefix/drive_c/windows/system32/$library.dll"
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
step "direct3d-$(cksum < "$here/dxvk.patch" | cut -d ' ' -f 1)" make_direct3d
step prefix-with-own-direct3d make_prefix
echo "$root"
