#!/usr/bin/env bash
# fxc.sh -nologo -E ENTRY -T PROFILE -Fh HEADER SOURCE: stands in for Direct3D's shader compiler while ANGLE is built,
# which calls it so. The work is done by vkd3d-compiler, in the Debian folder XELT_SHADER_ROOT.
set -eu -o pipefail

entry='' profile='' header='' source=''
while (($#)); do
    case "$1" in
        -nologo) ;;
        -E) entry="$2" && shift ;;
        -T) profile="$2" && shift ;;
        -Fh) header="$2" && shift ;;
        *) source="$1" ;;
    esac
    shift
done

# Not the names and the format that the 4.0 and later profiles have.
name="g_$entry" format=dxbc-tpf
case "$profile" in
    vs_2_0 | ps_2_0)
        name="g_${profile%%_*}20_$entry"
        format=d3dbc
        ;;
esac

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
# One function of Passthrough2D11.hlsl uses a notation that vkd3d-compiler does not know. No entry that ANGLE has
# built for mingw calls it.
sed '/^float4 PS_PassthroughRGBA2DMS(/,/^}/d' "$source" > "$scratch/in"
# By the folder's own loader: that needs no root, as a chroot would.
"$XELT_SHADER_ROOT/lib64/ld-linux-x86-64.so.2" --library-path "$XELT_SHADER_ROOT/usr/lib/x86_64-linux-gnu" \
    "$XELT_SHADER_ROOT/usr/bin/vkd3d-compiler" -x hlsl -b "$format" -p "$profile" -e "$entry" \
    -o "$scratch/out" "$scratch/in"
{
    printf 'const BYTE %s[] = {\n' "$name"
    xxd -i < "$scratch/out"
    printf '};\n'
} > "$scratch/header"
# In one go: make takes a header that is there for a whole one.
cp "$scratch/header" "$header.part"
mv "$header.part" "$header"
