#!/usr/bin/env bash
# imagemagick_test.sh BMP_EXCHANGE: bitmap files written here and read by ImageMagick, and the other
# way round. Status 77 where ImageMagick is not installed.
set -u
exchange=$(realpath "$1")

# Another program named convert may stand first in the path, so the candidates are tried.
magick=
for candidate in convert-im6.q16 convert-im6 /usr/bin/convert magick convert; do
    if command -v "$candidate" >/dev/null && [ "$("$candidate" -size 1x1 xc:red -depth 8 rgb:- 2>/dev/null |
        od -An -tx1 | tr -d ' ')" = ff0000 ]; then
        magick=$candidate
        break
    fi
done
if [ -z "$magick" ]; then
    echo "ImageMagick is not installed"
    exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# argb_of RGB: the same pixels with a byte 255 before each
argb_of() { od -An -v -tx1 -w3 "$1" | sed 's/ //g; s/^/ff/' | tr -d '\n'; }
hex_of() { od -An -v -tx1 "$1" | tr -d ' \n'; }

for size in 1x1 1x7 2x3 3x5 4x4 5x2 17x31 64x48; do
    head -c $((${size%x*} * ${size#*x} * 3)) /dev/urandom >in.rgb

    "$exchange" write "${size%x*}" "${size#*x}" in.rgb ours.bmp >/dev/null || fail "write $size"
    # It complains about file sizes that leave padding out, and reads the picture all the same.
    "$magick" ours.bmp -depth 8 rgb:out.rgb 2>complaints
    if grep -v 'length and filesize do not match' complaints; then
        fail "ImageMagick complains about ours of $size"
    fi
    cmp in.rgb out.rgb || fail "pixels of ours, $size"
    rm -f out.rgb

    # Headers of 40 and 124 bytes.
    for format in BMP3 BMP; do
        "$magick" -size "$size" -depth 8 rgb:in.rgb -type TrueColor "$format:theirs.bmp" ||
            fail "ImageMagick cannot write $size"
        [ "$("$exchange" read theirs.bmp out.argb)" = "$size" ] || fail "size of $format $size"
        [ "$(hex_of out.argb)" = "$(argb_of in.rgb)" ] || fail "pixels of $format $size"
    done

    head -c $((${size%x*} * ${size#*x})) in.rgb >in.gray
    "$magick" -size "$size" -depth 8 gray:in.gray -type TrueColor BMP3:mask.bmp
    "$exchange" mask mask.bmp out.gray >/dev/null || fail "mask $size"
    cmp in.gray out.gray || fail "pixels of the mask, $size"
done
[ $failures -eq 0 ]
