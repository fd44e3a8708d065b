#!/usr/bin/env bash
# explain_test.sh IMAGEBLEND: the picture of a blend's stages, and its planes as files.
source "$(dirname "$0")/helpers.sh"

flat grey.png 400 300 90 3
vips gaussnoise noise.v 400 300 --mean 160 --sigma 40 && vips cast noise.v noise1.v uchar
vips bandjoin "noise1.v noise1.v noise1.v" noise2.v
vips copy noise2.v noise.png --interpretation srgb
flat ground.png 600 400 60 3
rectangle bar.png 400 300 40 30 120 60

# same FILE FILE: equal pixels
same() {
    [ "$(vipsheader -f width "$1")x$(vipsheader -f height "$1")" = \
        "$(vipsheader -f width "$2")x$(vipsheader -f height "$2")" ] || return 1
    vips subtract "$1" "$2" difference.v && vips abs difference.v absolute.v
    [ "$(vips max absolute.v | cut -d. -f1)" -eq 0 ]
}
# shows FILE RED GREEN BLUE: whether a pixel has this colour
shows() {
    vips relational_const "$1" equal.v equal "$2 $3 $4" && vips bandbool equal.v all.v and
    [ "$(vips max all.v | cut -d. -f1)" -eq 255 ]
}

# A box of 120 x 60 has margins of 8 pixels; with them it has two levels below the full size.
planes() {
    local blend=(noise.png ground.png) options=(--mask bar.png)
    run 0 blend "${blend[@]}" blended.png "${options[@]}"
    run 0 explain "${blend[@]}" stages.png "${options[@]}" --dump planes/all
    [ ! -s out ] && [ ! -s err ] || fail "not silent: $last"
    vips extract_area blended.png place.png 232 162 136 76
    same place.png planes/all/level0-result.bmp || fail "the collapse is not the blend's result"
    [ "$(vipsheader -f width planes/all/level1-mask.bmp)" -eq 68 ] || fail "size of level 1"
    [ ! -e planes/all/level3-mask.bmp ] || fail "too many levels"
    local plane
    for plane in mask source-c2 destination-c1 result-c3; do
        vips rawload "planes/all/level1-$plane.raw" raw.v 68 38 1
        vips extract_band planes/all/level1-"${plane%-c*}".bmp band.v 0 # all channels are alike
        same raw.v band.v || fail "level1-$plane.raw is not the plane of its bitmap"
    done
    # Signed 16 bits, the low byte first here; at the top the values of the picture itself.
    vips rawload planes/all/level2-source-laplacian.raw raw.v 34 19 6
    vips extract_band raw.v low.v 0
    vips extract_band planes/all/level2-source.bmp band.v 0
    same low.v band.v || fail "the top of the Laplacian pyramid is not the coarsest level"
    vips rawload planes/all/level0-source-laplacian.raw raw.v 136 76 6
    vips extract_band raw.v high.v 1
    [ "$(vips max high.v | cut -d. -f1)" -eq 255 ] || fail "no negative values in a Laplacian level"
}

picture() {
    [ "$(vipsheader -f width stages.png)" -eq 1600 ] || fail "width of the picture"
    shows stages.png 255 205 40 || fail "the box is not drawn"
    ! shows stages.png 255 60 60 || fail "a seam is drawn that is not there"
    run 0 explain noise.png ground.png stages.png --mask bar.png --at 570,200
    says "seam may show at the right"
    shows stages.png 255 60 60 || fail "the seam is not drawn"
}

# Every stage is computed again and compared with the library's bytes: no geometry may differ.
geometries() {
    local options
    for options in "--zoom 0.1" "--zoom 0.26" "--zoom 0.5 --at 5,399" "--zoom 2.5 --angle 30" \
        "--angle -90 --at 599,0" "--zoom 1.7 --at 0,0 --soft" "--angle 360"; do
        # shellcheck disable=SC2086
        run 0 explain noise.png ground.png stages.png --mask bar.png $options
    done
    flat whole.png 400 300 255 1
    run 0 explain noise.png ground.png stages.png --mask whole.png
    rectangle tall.png 400 300 180 2 16 296
    flat low.png 400 310 60 3
    run 0 explain noise.png low.png stages.png --mask tall.png
}

mistakes() {
    rm -f stages.png
    run 2 explain noise.png ground.png stages.png --mask bar.png --zoom 9 && says "largest zoom"
    run 2 explain noise.png ground.png stages.png --mask bar.png --zoom 0.001 && says "nothing"
    run 73 explain noise.png ground.png stages.png --mask bar.png --dump grey.png/x
    says "grey.png/x"
    [ ! -e stages.png ] || fail "a picture is written in spite of a failure"
    if [ -c /dev/full ]; then
        mkdir full && ln -s /dev/full full/level0-mask.bmp
        run 73 explain noise.png ground.png stages.png --mask bar.png --dump full
        says "full/level0-mask.bmp"
    fi
    no_leftovers
}

for group in planes picture geometries mistakes; do
    $group
done
finish
