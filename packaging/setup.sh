# shellcheck shell=bash
# What ./play and ./test share: the Debian packages and a virtual display. Sourced by them, with `set -eu`.
#
#   xelt_install_packages all|test|windows|windows-qt
#                                    installs what is missing of packages.txt: the lines before the first
#                                    section, with the name of a section those of this one as well. Asks nothing.
#   xelt_has_display                 whether a window can be opened as things stand.
#   xelt_start_display [WxHxD]       starts Xvfb on a free display number and exports DISPLAY.
#   xelt_stop_display                ends it; xelt_start_display makes it the EXIT trap.

xelt_packages_file="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/packages.txt"
xelt_xvfb_pid=""
xelt_xvfb_number=""

xelt_list_packages() {
    local line section=all
    while IFS= read -r line || [ -n "$line" ]; do
        line="${line%%#*}"
        line="${line//[[:space:]]/}"
        case "$line" in
            "") ;;
            "["*"]") section="${line:1:-1}" ;;
            *) if [ "$section" = all ] || [ "${1:-}" = "$section" ]; then printf '%s\n' "$line"; fi ;;
        esac
    done < "$xelt_packages_file"
}

xelt_missing_packages() {
    local installed package
    # dpkg-query fails when one of the packages is unknown; what it printed for the others still counts.
    # shellcheck disable=SC2016 # the format is dpkg-query's own
    installed="$(xelt_list_packages "${1:-}" | xargs -r dpkg-query -W -f '${Package} ${db:Status-Status}\n' 2>/dev/null)" || true
    xelt_list_packages "${1:-}" | while IFS= read -r package; do
        grep -qxF "$package installed" <<< "$installed" || printf '%s\n' "$package"
    done
}

xelt_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    elif command -v sudo > /dev/null; then
        sudo -n env DEBIAN_FRONTEND=noninteractive "$@"
    else
        echo "Packages are missing, and installing them needs root or sudo." >&2
        return 1
    fi
}

xelt_install_packages() {
    local missing
    if ! command -v dpkg-query > /dev/null; then
        echo "This is not a Debian system: see to it that these are installed:" >&2
        xelt_list_packages "${1:-}" | xargs echo >&2
        return 0
    fi
    missing="$(xelt_missing_packages "${1:-}")"
    [ -n "$missing" ] || return 0
    echo "Installing: ${missing//$'\n'/ }" >&2
    # The package lists may be absent or too old to name a file that still exists: refresh them and retry.
    # shellcheck disable=SC2086 # one word for each package
    if ! xelt_as_root apt-get install -y --no-install-recommends -qq $missing > /dev/null 2>&1; then
        xelt_as_root apt-get update -qq >&2 || return 1
        xelt_as_root apt-get install -y --no-install-recommends -qq $missing > /dev/null || return 1
    fi
    missing="$(xelt_missing_packages "${1:-}")"
    if [ -n "$missing" ]; then
        echo "Still missing: ${missing//$'\n'/ }" >&2
        return 1
    fi
}

xelt_has_display() {
    [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]
}

xelt_start_display() {
    local pipe waited=0
    pipe="$(mktemp -u)"
    mkfifo -m 600 "$pipe"
    exec {xelt_display_fd}<> "$pipe"
    rm -f "$pipe"
    Xvfb -displayfd "$xelt_display_fd" -screen 0 "${1:-1920x1080x24}" -nolisten tcp -noreset \
        > /dev/null 2>&1 &
    xelt_xvfb_pid=$!
    trap xelt_stop_display EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    until IFS= read -r -t 1 -u "$xelt_display_fd" xelt_xvfb_number; do
        waited=$((waited + 1))
        if [ "$waited" -ge 30 ] || ! kill -0 "$xelt_xvfb_pid" 2> /dev/null; then
            echo "Xvfb did not start." >&2
            return 1
        fi
    done
    exec {xelt_display_fd}>&-
    export DISPLAY=":$xelt_xvfb_number"
    unset WAYLAND_DISPLAY
}

xelt_stop_display() {
    [ -n "$xelt_xvfb_pid" ] || return 0
    kill "$xelt_xvfb_pid" 2> /dev/null || true
    wait "$xelt_xvfb_pid" 2> /dev/null || true
    xelt_xvfb_pid=""
}
