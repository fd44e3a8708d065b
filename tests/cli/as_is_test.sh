#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# as_is_test.sh IMAGEBLEND: blends without preparation, and what the library's rules mean for them.
# shellcheck disable=SC2086 # lists of options are meant to be split
source "$(dirname "$0")/helpers.sh"

flat white.png 400 300 255 3
flat black.png 600 400 0 3
rectangle bar.png 400 300 40 30 120 60
rectangle large.png 400 300 10 10 380 200
blend=(blend white.png black.png o.png --as-is)
# Three parts with gaps between them, in colours that change from pixel to pixel, and black where
# nothing shows: the library needs other colours there.
rectangle beside.png 400 300 300 40 60 40
rectangle below.png 400 300 200 130 100 50
vips boolean bar.png beside.png two.png or && vips boolean two.png below.png parts.png or
vips xyz places.v 400 300 && vips linear places.v slope.v "0.6 0.8" "10 10" --uchar
vips bandjoin "slope.v white.png" bands.v && vips extract_band bands.v slope.v 0 --n 3
flat nothing.png 400 300 0 3
vips ifthenelse parts.png slope.v nothing.png parts.v
vips bandjoin "parts.v parts.png" alpha.v && vips copy alpha.v parts-cut.png --interpretation srgb

# Sums of the pixels that an app got which called the library with the same mask, zoom and angle.
bytes() {
    local sum options
    while read -r sum options; do
        run 0 blend $options black.png o.png --as-is
        vips rawsave o.png o.raw
        [ "$(sha1sum <o.raw | cut -c 1-12)" = "$sum" ] || fail "other bytes than before"
    done <<END
d79bc5cb6e08 white.png --mask bar.png
5ebcba0e7af6 white.png --mask bar.png --zoom 0.7 --angle 20
66978ba9e4f6 white.png --mask bar.png --at 20,380 --zoom 1.4
cd5abae9574a white.png --mask bar.png --angle -45 --soft
aacb93e46fe9 parts-cut.png
84f175e03dd6 parts-cut.png --at 250,180 --zoom 1.2 --angle 200
END
}

places() {
    run 0 "${blend[@]}" --mask bar.png && box_is o.png 0 240 170 120 60
    # At borders the object moves inwards, as far as the margin of 8 pixels and one more.
    run 0 "${blend[@]}" --mask bar.png --at 50,390 && box_is o.png 0 9 331 120 60
    says "seam may show at the left and bottom"
    says "by 19 pixels to the right and 29 pixels up"
    # An object that nearly fills its frame has short margins, and stands right all the same.
    flat small.png 400 240 0 3
    run 0 blend white.png small.png o.png --mask large.png --at 120,100 --zoom 0.25 --as-is
    box_is o.png 1 72 75 95 50
    # A hook, "_|", that is turned about the middle of its box reaches farther to the right.
    rectangle upright.png 400 300 260 80 40 200
    rectangle foot.png 400 300 100 240 200 40
    vips boolean upright.png foot.png hook.png or
    run 0 "${blend[@]}" --mask hook.png --angle 45 && box_is o.png 2 281 68 150 263
}

# The object is larger than the destination, so the tool scales it.
sizes() {
    flat small.png 200 150 0 3
    run 0 blend white.png small.png o.png --mask large.png --zoom 0.25 --as-is
    says "scaled by 0.25" && box_is o.png 1 52 50 95 50
    # White that is made smaller stays white, whatever colour its transparent pixels have.
    vips ifthenelse bar.png white.png nothing.png dark.v && vips bandjoin "dark.v bar.png" dark.png
    flat light.png 100 80 255 3
    run 0 blend dark.png light.png o.png --zoom 0.5 --as-is && says "scaled by 0.5"
    at_least o.png 254
    # Four pixels stay free around it, and fewer in a frame of less than 32.
    flat tiny.png 32 32 0 3 && flat least.png 24 24 0 3
    run 0 blend white.png tiny.png o.png --mask bar.png --zoom 0.21 --as-is
    says "scaled by 0.2 before"
    run 0 blend white.png least.png o.png --mask bar.png --zoom 0.2 --as-is
    says "scaled by 0.15 before"
    local command limit
    for command in "verify white.png small.png" "blend white.png small.png o.png"; do
        command="$command --mask large.png --angle 10 --as-is"
        run 2 $command
        limit=$(cat out err | sed -n 's/.*largest zoom that fits is //p')
        "$tool" $command --zoom "$limit" >out 2>err
        [ $? -le 1 ] || fail "the zoom $limit should fit: $command"
        run 2 $command --zoom "$(awk "BEGIN { print $limit * 1.02 }")"
    done
    run 2 "${blend[@]}" --mask bar.png --zoom 1e30 && says "largest zoom that fits is 4.4"
    flat dot.png 2 2 0 3
    run 2 blend white.png dot.png o.png --mask bar.png --as-is && says "nothing is left"
}

verdicts() {
    local verify=(verify white.png black.png --mask bar.png --as-is)
    run 0 "${verify[@]}" && prints "fits with full margins"
    silent
    run 1 "${verify[@]}" --at 60,200 && prints "seam at the left"
    says "seam may show at the left" && says "black.png: the object is moved inwards by 9 pixels"
    run 1 "${verify[@]}" --at 599,0 && prints "seam at the right and top"
    run 1 "${verify[@]}" --at 300,399 && prints "seam at the bottom"
}

groups bytes places sizes verdicts
