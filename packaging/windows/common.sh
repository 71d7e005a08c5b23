# shellcheck shell=bash
# What the scripts of this folder share. Sourced by them, after ../setup.sh.

xelt_cache="${XELT_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/xeltrender}"
# shellcheck disable=SC2034 # used by those that source this
xelt_windows_root="$xelt_cache/windows-root"

# xelt_chroot [--net] SCRIPT [ARGUMENT]...: runs a bash script in mount and process namespaces of its own, so that
# nothing stays mounted and no process stays behind, however it ends; with --net in a network of its own too. Its
# $root is the run-time root, with /proc and /dev; xelt_in runs a program inside it.
xelt_chroot() {
    local options=(--mount --pid --fork --kill-child) script
    if [ "$1" = --net ]; then
        options+=(--net)
        shift
    fi
    script="$1"
    shift
    # shellcheck disable=SC2016 # expanded by the inner shell
    xelt_as_root unshare "${options[@]}" bash -eu -c '
        root="$1"
        shift
        mount -t proc proc "$root/proc"
        mount --rbind /dev "$root/dev"
        mount -t tmpfs tmpfs "$root/tmp"
        xelt_in() {
            chroot "$root" env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"
        }
        '"$script" bash "$xelt_windows_root" "$@"
}
