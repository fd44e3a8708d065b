#!/usr/bin/env bash
# cli_test.sh IMAGEBLEND: runs the command line on small pictures and checks what it writes and says.
# shellcheck disable=SC2086 # lists of options are meant to be split
script=$(realpath "$0")
source "$(dirname "$0")/helpers.sh"

prints() { grep -qF -- "$1" out || fail "no '$1' on standard output"; }
silent() { [ ! -s err ] || fail "not silent"; }

# near TOLERANCE WHAT FOUND WANTED: two lists of numbers
near() {
    awk -v tolerance="$1" -v found="$3" -v wanted="$4" 'BEGIN {
        far = split(found, f) != split(wanted, w)
        for (i in w) far = far || (f[i] - w[i])^2 > tolerance^2
        exit far
    }' || fail "$2 $3 instead of $4"
}
# box_is FILE TOLERANCE LEFT TOP WIDTH HEIGHT: of the pixels above 127
box_is() {
    vips extract_band "$1" band.v 0
    vips relational_const band.v light.v more 127
    near "$2" "object at" "$(vips find_trim light.v --background 0 --threshold 10 | xargs)" "${*:3}"
}
# pixel_is FILE X Y VALUE...: each to 2 steps, for the rounding of the blend and of lossy files.
pixel_is() { near 2 "pixel $2,$3" "$(vips getpoint "$1" "$2" "$3")" "${*:4}"; }
at_least() { [ "$(vips min "$1" | cut -d. -f1)" -ge "$2" ] || fail "darker than $2"; }

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
        "--angle nan" "--at 5" "--at 1,2,3" "--at 1,x" "--at 99999999999,1"; do
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
}

# Where the object stands, whatever the frames look like that the library is given.
places() {
    local blend=(blend white.png black.png o.png)
    run 0 "${blend[@]}" --mask bar.png && silent && box_is o.png 0 240 170 120 60
    run 0 "${blend[@]}" --mask bar.png --at 200,150 --zoom 2 && box_is o.png 2 80 90 240 120
    run 0 "${blend[@]}" --mask large.png --at 150,120 --zoom 0.5 && box_is o.png 1 55 70 190 100
    # At borders the object moves inwards, as far as the margin of 8 pixels and one more.
    run 0 "${blend[@]}" --mask bar.png --at 50,390 && box_is o.png 0 9 331 120 60
    says "seam may show at the left and bottom"
    says "by 19 pixels to the right and 29 pixels up"
    # An object that nearly fills its frame has short margins, and stands right all the same.
    flat small.png 400 240 0 3
    run 0 blend white.png small.png o.png --mask large.png --at 120,100 --zoom 0.25
    box_is o.png 1 72 75 95 50
    # A quarter turn; then a hook, "_|", that turns its corner far to the right of its middle.
    run 0 "${blend[@]}" --mask bar.png --angle 90 && box_is o.png 1 270 140 60 120
    rectangle upright.png 400 300 260 80 40 200
    rectangle foot.png 400 300 100 240 200 40
    vips boolean upright.png foot.png hook.png or
    run 0 "${blend[@]}" --mask hook.png --angle 45 && box_is o.png 22 271 59 170 283
    # The output may replace an input and keeps the kind of file behind a link.
    cp black.png same.png && ln -s same.png link.png
    run 0 blend white.png same.png link.png --mask bar.png && box_is same.png 0 240 170 120 60
    [ -L link.png ] || fail "the link was replaced"
    no_leftovers
}

# The object is larger than the destination, so the tool scales it.
sizes() {
    flat small.png 200 150 0 3
    run 0 blend white.png small.png o.png --mask large.png --zoom 0.25
    says "scaled by 0.25" && box_is o.png 1 52 50 95 50
    local command limit
    for command in "verify white.png small.png" "blend white.png small.png o.png"; do
        run 2 $command --mask large.png --angle 10
        limit=$(cat out err | sed -n 's/.*largest zoom that fits is //p')
        "$tool" $command --mask large.png --angle 10 --zoom "$limit" >out 2>err
        [ $? -le 1 ] || fail "the zoom $limit should fit: $command"
        run 2 $command --mask large.png --angle 10 --zoom "$(awk "BEGIN { print $limit * 1.02 }")"
    done
    run 2 blend white.png black.png o.png --mask bar.png --zoom 1e30
    says "largest zoom that fits is 4.4"
    flat dot.png 2 2 0 3
    run 2 blend white.png dot.png o.png --mask bar.png && says "nothing is left"
}

verdicts() {
    local verify=(verify white.png black.png --mask bar.png)
    run 0 "${verify[@]}" && prints "fits with full margins"
    run 1 "${verify[@]}" --at 60,200 && prints "seam at the left"
    run 1 "${verify[@]}" --at 599,0 && prints "seam at the right and top"
    run 1 "${verify[@]}" --at 300,399 && prints "seam at the bottom"
}

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
    flat narrow.png 110 100 255 3
    run 0 blend dark.png narrow.png o.png --zoom 0.8 && says "scaled" && at_least o.png 253
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

groups arguments completion files objects places sizes verdicts surroundings orientations
