#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# explain_test.sh IMAGEBLEND: the picture of a blend's stages, and its planes as files.
# shellcheck disable=SC2086 # lists of options are meant to be split
source "$(dirname "$0")/helpers.sh"

vips gaussnoise noise.v 400 300 --mean 160 --sigma 40
vips linear noise.v colours.v "1 -1 0.5" "0 255 50" --uchar
vips copy colours.v noise.png --interpretation srgb
vips xyz places.v 400 300 && vips extract_band places.v across.v 0 && vips extract_band places.v down.v 1
vips bandjoin "across.v down.v across.v" colours.v
vips linear colours.v places.v "0.6 0.8 -0.6" "10 10 250" --uchar
vips copy places.v slope.png --interpretation srgb
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
    # Three bitmaps of the whole; of a level seven, of which three have a raw plane for each channel.
    [ "$(ls -- *.bmp | wc -l) $(ls -- *.raw | wc -l)" = "24 39" ] || fail "planes: $(ls | xargs)"
    [ -e paste.bmp ] && [ -e level2-mask.raw ] || fail "planes are missing"
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

# What pages show beside their texts, which depend on fonts: sums of parts of them. Nothing in these
# parts is made smaller, so that all depends on whole numbers.
pictures() {
    local sum page area
    run 0 explain noise.png ground.png stages.png --mask bar.png --as-is
    ! shows stages.png 255 60 60 || fail "a seam is drawn that is not there"
    run 0 explain slope.png ground.png seam.png --mask bar.png --at 570,200 --as-is
    says "seam may show at the right"
    flat even.png 400 300 60 3
    rectangle wide.png 400 300 6 8 389 283
    run 0 explain slope.png even.png wide-page.png --mask wide.png --angle 180 --as-is
    run 0 explain slope.png ground.png prepared.png --mask bar.png --at 570,200 --angle 10 && silent
    while read -r sum page area; do
        vips extract_area $page.png piece.v $area && vips rawsave piece.v piece.raw
        [ "$(sha1sum <piece.raw | cut -c 1-8)" = "$sum" ] || fail "$page.png is another at $area"
    done <<END
ff60345d seam 0 106 760 478
c9eeea2c seam 788 106 812 478
35020fab seam 10 580 33 22
691310ae seam 800 580 31 22
92554cde seam 800 602 31 20
358f5143 seam 214 688 1386 965
223b3cbf seam 0 1687 1600 590
be2ee38b seam 800 2280 31 22
9cc4b88f wide-page 0 106 760 478
f0967e21 wide-page 788 106 812 478
99529998 wide-page 10 602 33 20
65c1b0eb prepared 0 106 1600 510
END
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

groups planes pictures geometries mistakes
