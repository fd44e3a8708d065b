#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# explain_test.sh IMAGEBLEND: the picture of a blend's stages, and its planes as files.
# shellcheck disable=SC2086 # lists of options are meant to be split
source "$(dirname "$0")/helpers.sh"

vips gaussnoise noise.v 400 300 --mean 160 --sigma 40
vips linear noise.v colours.v "1 -1 0.5" "0 255 50" --uchar
vips copy colours.v noise.png --interpretation srgb
flat ground.png 600 400 60 3
rectangle bar.png 400 300 40 30 120 60

# same FILE FILE WHAT: expects equal pixels.
same() {
    vips relational "$1" "$2" equal.v equal
    [ "$(size "$1")" = "$(size "$2")" ] && [ "$(vips min equal.v)" = 255.000000 ] || fail "$3"
}
# shows FILE RED GREEN BLUE: whether a pixel has this colour
shows() {
    vips relational_const "$1" equal.v equal "$2 $3 $4" && vips bandbool equal.v all.v and
    [ "$(vips max all.v)" = 255.000000 ]
}

# A box of 120 x 60 has margins of 8 pixels; with them it has two levels below the full size.
planes() {
    run 0 blend noise.png ground.png blended.png --mask bar.png --as-is
    run 0 explain noise.png ground.png stages.png --mask bar.png --as-is --dump planes/all
    [ ! -s out ] && [ ! -s err ] || fail "not silent"
    vips extract_area blended.png place.png 232 162 136 76
    cd planes/all || return
    same ../../place.png level0-result.bmp "the collapse is not the blend's result"
    [ ! -e level3-mask.bmp ] || fail "too many levels"
    local plane
    for plane in mask-c1 source-c1 source-c2 destination-c1 result-c3; do
        vips rawload "level1-${plane/mask-c1/mask}.raw" raw.v 68 38 1
        vips extract_band "level1-${plane%-c*}.bmp" band.v $((${plane#*-c} - 1))
        same raw.v band.v "level1-$plane.raw is not the plane of its bitmap"
    done
    # Signed 16 bits, the low byte first here; at the top the values of the picture itself.
    vips rawload level2-source-laplacian.raw raw.v 34 19 6
    vips extract_band raw.v low.v 0
    vips extract_band level2-source.bmp band.v 0
    same low.v band.v "the top of the Laplacian pyramid is not the coarsest level"
    vips rawload level0-source-laplacian.raw raw.v 136 76 6
    vips extract_band raw.v high.v 1
    [ "$(vips max high.v)" = 255.000000 ] || fail "no negative values in a Laplacian level"
    cd "$work" || return
}

picture() {
    [[ $(size stages.png) == 1600x* ]] || fail "width of the picture"
    shows stages.png 255 205 40 || fail "the box is not drawn"
    ! shows stages.png 255 60 60 || fail "a seam is drawn that is not there"
    run 0 explain noise.png ground.png stages.png --mask bar.png --at 570,200 --as-is
    says "seam may show at the right"
    shows stages.png 255 60 60 || fail "the seam is not drawn"
}

# Every stage is computed again and compared with the library's bytes: no geometry may differ.
geometries() {
    local options
    for options in "--zoom 0.1" "--zoom 0.26" "--zoom 0.5 --at 5,399" "--zoom 2.5 --angle 30" \
        "--angle -90 --at 599,0" "--zoom 1.7 --at 0,0 --soft" "--angle 360"; do
        run 0 explain noise.png ground.png stages.png --mask bar.png --as-is $options
    done
    # Prepared: alone, across the border, with surroundings, larger than the destination.
    for options in "--zoom 0.26 --angle 12" "--at 5,399" "--surroundings 12" "--zoom 9"; do
        run 0 explain noise.png ground.png stages.png --mask bar.png $options
        shows stages.png 60 220 90 || fail "no outline is drawn"
    done
    flat whole.png 400 300 255 1
    run 0 explain noise.png ground.png stages.png --mask whole.png --as-is
    rectangle tall.png 400 300 180 2 16 296
    flat low.png 400 310 60 3
    run 0 explain noise.png low.png stages.png --mask tall.png --as-is
}

mistakes() {
    rm -f stages.png
    run 2 explain noise.png ground.png stages.png --mask bar.png --zoom 9 --as-is
    says "largest zoom"
    run 2 explain noise.png ground.png stages.png --mask bar.png --zoom 0.001 && says "smaller than a pixel"
    run 73 explain noise.png ground.png stages.png --mask bar.png --dump bar.png/x
    says "bar.png/x"
    [ ! -e stages.png ] || fail "a picture is written in spite of a failure"
    mkdir full && ln -s /dev/full full/level0-mask.bmp
    run 73 explain noise.png ground.png stages.png --mask bar.png --dump full
    says "full/level0-mask.bmp"
    no_leftovers
}

groups planes picture geometries mistakes
