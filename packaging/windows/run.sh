#!/usr/bin/env bash
# run.sh QT SOURCE BUILD PROGRAM [ARGUMENT]...: runs a Windows program in the environment that runtime.sh makes,
# with its output and exit status, in the working directory. Qt, the sources and the build are seen there under
# their own paths, so that these hold for the program too: its drive Z is the root of the file system. Of the
# environment it gets what the tests are told by: XELT_TEST_..., QT_..., GTEST_... and LP_NUM_THREADS.
#
# Up to XELT_WINDOWS_SLOTS programs (default 2) run at a time, each with a Wine prefix and a display of its own;
# more of them wait.
set -eu -o pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
# shellcheck source=packaging/setup.sh
. "$here/../setup.sh"
# shellcheck source=packaging/windows/common.sh
. "$here/common.sh"

qt="$1" source="$2" build="$3"
shift 3

# Sets slot to one that is free, and keeps it locked by a descriptor that every process of this run inherits.
take_slot() {
    local number descriptor
    while true; do
        for ((number = 1; number <= ${XELT_WINDOWS_SLOTS:-2}; number++)); do
            exec {descriptor}> "$xelt_windows_root/slots/$number.lock"
            if flock --nonblock "$descriptor"; then
                slot="$xelt_windows_root/slots/$number"
                return
            fi
            exec {descriptor}>&-
        done
        sleep 0.2
    done
}

# A batch file: Wine keeps variables of these names from programs.
write_batch() {
    local name argument command=
    printf '@echo off\r\nZ:\r\ncd %s\r\n' "$(windows_path "$(pwd -P)")"
    # The tests ask for a display by this name; here it is Wine's.
    printf 'set DISPLAY=wine\r\n'
    printf 'set XELT_TEST_HIDE_CONSOLE=1\r\n'
    # Qt warns of this for every window: Wine does not implement it.
    printf 'set XELT_TEST_NOISE=EnableNonClientDpiScaling() failed\r\n'
    printf 'set QT_PLUGIN_PATH=%s\r\n' "$(windows_path "$qt/plugins")"
    printf 'set PATH=%s;%s;%s;%%PATH%%\r\n' "$(windows_path "$build")" "$(windows_path "$qt/bin")" \
        "$(windows_path "$qt/runtime")"
    while IFS= read -r name; do
        printf 'set %s=%s\r\n' "$name" "${!name//%/%%}"
    done < <(compgen -e | grep -E '^(XELT_TEST|QT|GTEST)_' | grep -vx QT_PLUGIN_PATH)
    for argument in "$@"; do
        command="$command \"${argument//%/%%}\""
    done
    printf '%s > Z:\\run\\out.txt 2>&1\r\n' "${command# }"
    # In this order: a digit before the arrow would be taken for a descriptor.
    printf '> Z:\\run\\rc.txt echo %%errorlevel%%\r\n'
}

windows_path() {
    printf 'Z:%s' "${1//\//\\}"
}

take_slot
mkdir -p "$slot/run"
rm -f "$slot/run/"*
: > "$slot/run/out.txt"
program="$(windows_path "$(realpath "$1")")"
shift
write_batch "$program" "$@" > "$slot/run/run.bat"

# shellcheck disable=SC2016 # expanded by the inner shell
xelt_chroot --net '
    slot="$1" threads="$2"
    shift 2
    ip link set lo up
    for folder in "$@"; do
        mkdir -p "$root$folder"
        mount --bind "$folder" "$root$folder"
    done
    if [ ! -e "$slot/prefix/complete" ]; then
        rm -rf "$slot/prefix"
        cp -a "$root/root/prefix" "$slot/prefix"
        touch "$slot/prefix/complete"
    fi
    mkdir -p "$root/prefix"
    mount --bind "$slot/prefix" "$root/prefix"
    mount --bind "$slot/run" "$root/run"
    # The screen of the desktop that Wine makes has a refresh rate; the one of Xvfb has none, and windows that
    # Direct3D presents need one. Without a debugger a program that crashes ends.
    xelt_in WINEPREFIX=/prefix WINEDEBUG=-all WINEDLLOVERRIDES="d3d11,dxgi=n;winedbg.exe=d" \
        DXVK_LOG_LEVEL=none $threads xvfb-run -a -s "-screen 0 2048x1536x24" \
        wine explorer /desktop=xelt,2048x1536 cmd /c "Z:\\run\\run.bat"
' "$slot" "${LP_NUM_THREADS:+LP_NUM_THREADS=$LP_NUM_THREADS}" "$qt" "$source" "$build" > "$slot/run/wine.txt" 2>&1 &
tail --sleep-interval=0.2 --follow --lines=+1 --pid=$! "$slot/run/out.txt" 2> /dev/null | tr -d '\r'
wait $! || true
if [ ! -s "$slot/run/rc.txt" ]; then
    echo "The program did not run to its end; Wine says:" >&2
    cat "$slot/run/wine.txt" >&2
    exit 1
fi
status="$(tr -dc '0-9-' < "$slot/run/rc.txt")"
# A shell's status has eight bits, those of Windows more.
((status == 0)) || echo "Exit status $status" >&2
exit $((status > 0 && status < 256 ? status : status != 0))
