#!/usr/bin/env bash
# Builds Qt 5.15 with ANGLE for mingw-w64 on Debian 12 and prints the folder that holds it, laid out as
# CMAKE_PREFIX_PATH takes it: it may be moved, its moc, rcc and uic are Linux programs, runtime/ has the compiler's
# DLLs. All happens in a cache outside the checkout, ${XELT_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/xeltrender}, takes
# about an hour on two processors and 3 GB meanwhile. A step that has finished is not repeated: after an interruption
# it goes on where it was.
set -eu -o pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source=packaging/setup.sh
. "$here/../setup.sh"
# shellcheck source=packaging/windows/common.sh
. "$here/common.sh"

# Accessibility and tablets need headers of others, which Debian has taken out of the sources.
configure_options="-xplatform win32-g++ -device-option CROSS_COMPILE=x86_64-w64-mingw32- -opensource -confirm-license
    -release -shared -opengl dynamic -no-dbus -no-feature-sql -no-feature-xml -no-feature-concurrent
    -no-feature-printer -no-feature-accessibility -no-feature-tabletevent -nomake examples -nomake tests
    -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype -qt-harfbuzz -qt-pcre -no-icu -no-openssl -no-pch -silent"
work="$xelt_cache/windows-qt-build"
result="$work/qt5-mingw"
jobs="$(nproc)"

# step NAME FUNCTION: unless it has finished before; the stamp comes last. What it prints goes to a file.
step() {
    local log="$work/log/$1.txt" status
    [ ! -e "$work/stamp/$1" ] || return 0
    printf '%s  Qt for Windows: %s\n' "$(date +%H:%M)" "${1//-/ }" >&2
    # A subshell in a condition of any kind would go on after errors.
    set +e
    (set -e; "$2") > "$log" 2>&1 < /dev/null
    status=$?
    set -e
    if [ "$status" -ne 0 ]; then
        tail -n 30 "$log" >&2
        echo "That was the end of $log" >&2
        exit 1
    fi
    touch "$work/stamp/$1"
}

# ANGLE has shaders that Direct3D's own compiler is meant for. vkd3d-compiler can do it from 2.1 on; Debian's stable
# releases have older ones.
make_shader_compiler() {
    # What debootstrap mounts there stays when it is killed, and is none of this folder's.
    xelt_as_root rm -rf --one-file-system "$XELT_SHADER_ROOT"
    xelt_as_root debootstrap --variant=minbase --include=vkd3d-compiler sid "$XELT_SHADER_ROOT"
    # configure looks for this path.
    mkdir -p "$DXSDK_DIR/Utilities/bin/x64"
    cp "$here/fxc.sh" "$DXSDK_DIR/Utilities/bin/x64/fxc.exe"
}

# By lists of its own, so that the machine's need no sources; from the mirror that the folder above came from.
fetch_sources() {
    local folder="$work/fetch" mirror apt
    rm -rf "$folder"
    mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial"
    mirror="$(sed -n 's/^deb \([^ ]*\) .*/\1/p' "$XELT_SHADER_ROOT/etc/apt/sources.list" | head -n 1)"
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror bookworm main" \
        > "$folder/sources.list"
    apt=(apt-get -q -o APT::Sandbox::User=root -o Dir::Etc::SourceList="$folder/sources.list"
        -o Dir::Etc::SourceParts=/dev/null -o Dir::State::Lists="$folder/lists" -o Dir::Cache="$folder/cache")
    "${apt[@]}" update
    cd "$folder"
    "${apt[@]}" source --download-only qtbase-opensource-src
}

unpack_sources() {
    rm -rf "$work/source"
    dpkg-source --no-copy --extract "$work"/fetch/qtbase-opensource-src_5.15.*.dsc "$work/source"
    # Without fuzz: an edit either fits or ends this.
    patch --directory="$work/source" --strip=1 --fuzz=0 < "$here/angle.patch"
}

configure_qt() {
    rm -rf "$work/build" "$work/installed"
    mkdir "$work/build"
    cd "$work/build"
    # shellcheck disable=SC2086 # one word for each option
    MAKEFLAGS="-j$jobs" "$work/source/configure" -prefix "$work/installed" -extprefix "$work/installed" \
        -hostprefix "$work/installed" $configure_options
    # Where something that ANGLE needs is missing, Qt does without it.
    grep -E '^ *ANGLE \.+ yes$' config.summary
}

build_qt() {
    make -C "$work/build" -j"$jobs"
}

install_qt() {
    rm -rf "$work/installed"
    make -C "$work/build" install
}

# What programs are built and run with; qmake's modules, of which there is no use without the build folder, stay.
collect_qt() {
    local from="$work/installed" to="$work/collected" library
    rm -rf "$to"
    mkdir -p "$to/bin" "$to/lib" "$to/mkspecs" "$to/runtime"
    cp "$from"/bin/{Qt5*.dll,libEGL.dll,libGLESv2.dll,moc,qmake,rcc,uic} "$to/bin"
    # Else the programs would look for everything where it was installed.
    printf '[Paths]\nPrefix=..\n' > "$to/bin/qt.conf"
    cp "$from"/lib/*.a "$to/lib"
    cp -r "$from/lib/cmake" "$from/lib/metatypes" "$to/lib"
    cp -r "$from/include" "$from/plugins" "$to"
    cp -r "$from"/mkspecs/{common,features,qconfig.pri,win32-g++} "$to/mkspecs"
    for library in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
        cp "$(x86_64-w64-mingw32-g++-posix -print-file-name="$library")" "$to/runtime"
    done
    rm -rf "$result"
    mv "$to" "$result"
}

# The compilers with POSIX threads, whichever the machine's default is.
make_compiler_links() {
    local name
    mkdir -p "$work/bin"
    for name in gcc g++; do
        ln -sf "$(command -v "x86_64-w64-mingw32-$name-posix")" "$work/bin/x86_64-w64-mingw32-$name"
    done
    PATH="$work/bin:$PATH"
}

case "$work" in
    *[[:space:]]*)
        echo "Qt cannot be built in a folder with a space in its name: $work" >&2
        exit 1
        ;;
esac
mkdir -p "$xelt_cache"
exec {lock}> "$xelt_cache/windows-qt-build.lock"
if ! flock --nonblock "$lock"; then
    echo "Qt for Windows is being built already: waiting for that" >&2
    flock "$lock"
fi
# A Qt of another recipe is no use, and neither are the steps to it.
recipe="$(printf %s "$configure_options$(declare -f collect_qt)" | cat - "$here/angle.patch" "$here/fxc.sh" | cksum)"
if [ "$(cat "$work/recipe" 2> /dev/null)" != "$recipe" ]; then
    xelt_as_root rm -rf "$work"
    mkdir -p "$work"
    echo "$recipe" > "$work/recipe"
fi
if [ ! -e "$work/stamp/finish" ]; then
    echo "Building Qt 5.15 with ANGLE for Windows in $work: about an hour on two processors, this once." >&2
    xelt_install_packages windows-qt
    mkdir -p "$work/log" "$work/stamp"
    export DXSDK_DIR="$work/dxsdk" XELT_SHADER_ROOT="$work/shader-root"
    # What would change Qt's build.
    unset CFLAGS CXXFLAGS LDFLAGS MAKEFLAGS QMAKESPEC QTDIR
    make_compiler_links
    step shader-compiler make_shader_compiler
    step fetch-sources fetch_sources
    step unpack-sources unpack_sources
    step configure configure_qt
    step build build_qt
    step install install_qt
    step finish collect_qt
fi
# 3 GB, which nothing needs any more.
xelt_as_root rm -rf "$work"/{shader-root,dxsdk,fetch,source,build,installed,bin}
echo "$result"
