#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# cli_test.sh IMAGEBLEND: runs the command line on small pictures and checks what it writes and says.
# shellcheck disable=SC2086 # lists of options are meant to be split
script=$(realpath "$0")
source "$(dirname "$0")/helpers.sh"

# pixel_is FILE X Y VALUE...: each to 2 steps, for the rounding of the blend and of lossy files.
pixel_is() { near 2 "pixel $2,$3" "$(vips getpoint "$1" "$2" "$3")" "${*:4}"; }

flat white.png 400 300 255 3
flat black.png 600 400 0 3
rectangle bar.png 400 300 40 30 120 60
rectangle large.png 400 300 10 10 380 200
vips bandjoin "white.png bar.png" cut.png

arguments() {
    run 0 --version && prints 2.0.0
    local command bad
    for command in blend verify size cutout explain batch; do
        run 0 $command --help && prints "imageblend $command "
    done
    run 64 && says "batch"
    run 64 blendd white.png && says "blendd: no such command; there are blend verify"
    run 64 blend white.png black.png
    for bad in "--zoom nan" "--zoom inf" "--zoom 0" "--zoom -1" "--zoom 1e60" "--zoom 1e-60" \
        "--angle nan" "--at 5" "--at 1,2,3" "--at 1,x" "--at 1.5,2" "--at 1%,nan%" "--at 1000000001,1"; do
        run 64 blend white.png black.png o.png --mask bar.png $bad && says "${bad%% *}"
    done
    run 64 blend white.png black.png o.xyz --mask bar.png && says "o.xyz"
    run 64 cutout white.png o.jpg --mask bar.png && says "o.jpg"
    [ ! -e o.png ] || fail "an output was written for bad arguments"
}

# complete WORD...: what the shell offers for the last word
complete_words() {
    COMP_WORDS=(imageblend "$@") COMP_CWORD=$#
    _imageblend 2>/dev/null
    offered="${COMPREPLY[*]}"
}
completion() {
    source "$(dirname "$script")/../../tools/completion/imageblend.bash"
    # Every command and every option that the help names is offered, and nothing else.
    local command words
    complete_words ""
    for command in ${offered//--*/}; do
        complete_words "$command" -
        words=$("$tool" "$command" --help | grep -oE '^  (-h,)?--[a-z-]+' | sed 's/.*--/--/' | sort)
        [ "$(tr ' ' '\n' <<<"$offered" | sort)" = "$words" ] || fail "options of $command: $offered"
    done
    [ "$command" = batch ] || fail "the commands are not offered"
    complete_words blend white.png black.png --mask ba
    [ "$offered" = bar.png ] || fail "offers '$offered' instead of a file"
    complete_words blend white.png black.png --zoom ""
    [ -z "$offered" ] || fail "offers '$offered' instead of nothing"
}

files() {
    run 66 blend none.png black.png o.png && says "none.png: cannot be read: No such file"
    run 66 blend "$0" black.png o.png
    run 65 blend white.png black.png o.png && says "white.png: has no alpha channel"
    run 65 blend black.png white.png o.png --mask bar.png && says "400 x 300" && says "600 x 400"
    run 65 size black.png && says "marks no object"
    run 73 blend cut.png black.png none/o.png && says "none/o.png: cannot be written"
    vips gaussnoise noise.v 400 300 && vips cast noise.v noise.jpg uchar
    head -c 20000 noise.jpg >short.jpg
    run 66 blend cut.png short.jpg o.png && says "short.jpg"
}

objects() {
    run 0 size bar.png && prints "120 60"
    run 0 size cut.png && prints "120 60"
    run 0 cutout white.png o.png --mask bar.png
    [ "$(size o.png)" = 120x60 ] || fail "cut-out size"
    pixel_is o.png 0 0 255 255 255 255

    # The mask is cut at 128 unless it is soft.
    vips linear bar.png faint.png 0.35 1 --uchar
    run 65 size faint.png && says "128"
    run 0 size faint.png --soft && prints "400 300"
    # A soft cut-out keeps its alpha, and its edge nothing of what was behind.
    vips gaussblur bar.png soft.png 3
    vips linear soft.png half.v 0.6 100 && vips cast half.v half.png uchar
    vips bandjoin "half.png half.png half.png" joined.v && vips copy joined.v mixed.png --interpretation srgb
    run 0 cutout mixed.png o.png --mask soft.png --soft
    local middle
    middle=$(($(vipsheader -f height o.png) / 2))
    for x in 5 6 7 8 9 10; do
        [ "$(vips getpoint o.png $x $middle | awk '{ print ($4 > 60 && ($1 - 253)^2 > 400) }')" = 0 ] ||
            fail "the edge shows what was behind"
    done
}

# Where the object stands: its middle, at odd and even sizes alike, or a side of it.
places() {
    local blend=(blend white.png black.png o.png)
    run 0 "${blend[@]}" --mask bar.png && silent && box_is o.png 0 240 170 120 60
    run 0 "${blend[@]}" --mask bar.png --at 200,150 --zoom 2 && box_is o.png 1 80 90 240 120
    run 0 "${blend[@]}" --mask large.png --at 150,120 --zoom 0.5 && box_is o.png 1 55 70 190 100
    run 0 "${blend[@]}" --mask bar.png --at 50%,80% && box_is o.png 0 240 290 120 60
    rectangle odd.png 400 300 40 30 121 61
    run 0 "${blend[@]}" --mask odd.png --at 200,150 && box_is o.png 0.5 139.5 119.5 121 61
    local side
    for side in "centre 240 170" "left 300 170" "right 180 170" "top 240 200" "bottom 240 140"; do
        set -- $side
        run 0 "${blend[@]}" --mask bar.png --anchor "$1" && box_is o.png 0 "$2" "$3" 120 60
    done
    # A quarter turn; then a hook, "_|", that turns its corner far to the right of its middle.
    run 0 "${blend[@]}" --mask bar.png --angle 90 && box_is o.png 1 270 140 60 120
    run 0 "${blend[@]}" --mask bar.png --angle 90 --anchor bottom && box_is o.png 1 270 80 60 120
    rectangle upright.png 400 300 260 80 40 200
    rectangle foot.png 400 300 100 240 200 40
    vips boolean upright.png foot.png hook.png or
    run 0 "${blend[@]}" --mask hook.png --angle 45 && box_is o.png 2 271 59 170 283
    # The output may replace an input and keeps the kind of file behind a link.
    cp black.png same.png && ln -s same.png link.png
    run 0 blend white.png same.png link.png --mask bar.png && box_is same.png 0 240 170 120 60
    [ -L link.png ] || fail "the link was replaced"
    no_leftovers
}

# Across the border, larger than the destination, and where nothing would show.
borders() {
    local blend=(blend white.png black.png o.png --mask bar.png) bad
    run 0 "${blend[@]}" --at 50,390 && silent && box_is o.png 0 0 360 110 40
    run 0 "${blend[@]}" --at 0%,0% --zoom 30 && box_is o.png 0 0 0 600 400
    run 0 "${blend[@]}" --at 100%,100% --anchor bottom && box_is o.png 0 540 340 60 60
    flat dot.png 2 2 0 3
    run 0 blend white.png dot.png o.png --mask bar.png && at_least o.png 254
    for bad in "--zoom 0.001" "--at 5300,200" "--at 1000000000,9" "--at 300,-90 --angle 10"; do
        rm -f o.png; run 2 "${blend[@]}" $bad && says "${bad%% *}"
        [ ! -e o.png ] || fail "an output without the object"
        run 2 verify white.png black.png --mask bar.png $bad
    done
    run 0 verify white.png black.png --mask bar.png && prints "fits"
    run 1 verify white.png black.png --mask bar.png --at 599,0
    prints "cut off at the right and top"
}

# A wide mask is taken back to the edge, its surroundings left behind, and nothing else changes.
preparation() {
    vips gaussnoise noise.v 400 300 --mean 100 --sigma 6 --seed 1
    vips linear bar.png bar.v 0.5 0
    vips add noise.v bar.v sum.v && vips cast sum.v grey.v uchar
    vips bandjoin "grey.v grey.v grey.v" joined.v && vips copy joined.v photo.png --interpretation srgb
    rectangle wide.png 400 300 34 24 132 72
    vips gaussnoise ground.v 600 400 --mean 40 --sigma 9 --seed 2 && vips cast ground.v ground.png uchar
    vips bandjoin "ground.png ground.png ground.png" joined.v
    vips copy joined.v ground.png --interpretation srgb
    run 0 blend photo.png ground.png o.png --mask wide.png && silent && box_is o.png 0 240 170 120 60
    unchanged 238 168 124 64
    run 0 blend photo.png ground.png o.png --mask wide.png --no-fit && unchanged 233 163 134 74
    pixel_near o.png 237 200 100
    run 0 blend photo.png ground.png o.png --mask wide.png --grow 4 && unchanged 234 164 132 72
    run 0 blend photo.png ground.png alone.png --mask bar.png
    run 0 blend photo.png ground.png o.png --mask bar.png --surroundings 20
    ! cmp -s alone.png o.png || fail "no surroundings come along"
    unchanged 219 149 162 102 && pixel_near o.png 236 200 40
    run 0 blend cut.png ground.png o.png --surroundings 20 && says "nothing around the object"
    unchanged 239 169 122 62
    # A ghost is what a cut-out's brightness would give as a mask.
    run 0 blend photo.png ground.png o.png --mask cut.png && box_is o.png 0 240 170 120 60
    run 64 blend photo.png ground.png o.png --mask wide.png --as-is --grow 1 && says "--as-is"
    for bad in "--grow 17" "--grow nan" "--surroundings 257" "--surroundings x" "--anchor up"; do
        run 64 blend photo.png ground.png o.png --mask wide.png $bad && says "${bad%% *}"
    done
}
# unchanged LEFT TOP WIDTH HEIGHT: outside of this box o.png has the bytes of ground.png
unchanged() {
    vips relational o.png ground.png differs.v noteq
    vips bandbool differs.v any.v or
    read -r left top width height < <(vips find_trim any.v --background 0 --threshold 10 | xargs)
    [ "$left" -ge "$1" ] && [ "$top" -ge "$2" ] && [ $((left + width)) -le $(($1 + $3)) ] &&
        [ $((top + height)) -le $(($2 + $4)) ] || fail "changed at $left $top $width $height"
}
# pixel_near FILE X Y VALUE: within the noise of the pictures
pixel_near() { near 36 "pixel $2,$3" "$(vips getpoint "$1" "$2" "$3" | cut -d' ' -f1)" "$4"; }

# White on white stays white: nothing dark comes in from beyond the source or from transparent pixels.
surroundings() {
    flat wide.png 600 400 255 3
    flat nothing.png 400 300 0 3
    flat all.png 100 80 255 1 && flat patch.png 100 80 255 3
    run 0 blend patch.png wide.png o.png --mask all.png && at_least o.png 254
    vips ifthenelse bar.png white.png nothing.png colour.png
    vips bandjoin "colour.png bar.png" dark.png
    run 0 blend dark.png wide.png o.png && at_least o.png 254
    run 0 blend dark.png wide.png o.png --zoom 1.5 --angle 30 && at_least o.png 254
}

orientations() {
    # Turned by its EXIF data, the picture is 400 high and 300 wide.
    vips copy white.png "flat.jpg[strip]"
    {
        head -c 2 flat.jpg
        printf '\xff\xe1\x00\x22Exif\x00\x00MM\x00\x2a\x00\x00\x00\x08\x00\x01'
        printf '\x01\x12\x00\x03\x00\x00\x00\x01\x00\x06\x00\x00\x00\x00\x00\x00'
        tail -c +3 flat.jpg
    } >turned.jpg
    rectangle upright.png 300 400 40 30 60 120
    run 0 blend turned.jpg black.png o.png --mask upright.png && box_is o.png 0 270 140 60 120
    run 0 blend cut.png turned.jpg o.png
    [ "$(size o.png)" = 300x400 ] || fail "the orientation of a destination is ignored"
}

groups arguments completion files objects places borders preparation surroundings orientations
