#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# files_test.sh IMAGEBLEND: which picture files are read, what is kept of them, and what is left
# behind. IMAGEBLEND_SIGNAL_RUNS sets the number of runs that a signal ends.
# shellcheck disable=SC2086 # lists of options are meant to be split
source "$(dirname "$0")/helpers.sh"
signal_runs=${IMAGEBLEND_SIGNAL_RUNS:-40}

silent() { [ ! -s err ] || fail "not silent"; }
# field FILE NAME: of the header
field() { vipsheader -f "$2" "$1" 2>/dev/null; }
has() { [ -n "$(field "$1" "$2")" ] || fail "$1 has no $2"; }
# colour FILE WIDTH HEIGHT R G B
colour() {
    flat colour.v "$2" "$3" 1 3
    vips linear colour.v colour2.v "1 1 1" "$(($4 - 1)) $(($5 - 1)) $(($6 - 1))" --uchar
    vips copy colour2.v "$1" --interpretation srgb
}
# pixel_is FILE X Y TOLERANCE VALUE...
pixel_is() {
    awk -v tolerance="$4" -v found="$(vips getpoint "$1" "$2" "$3")" -v wanted="${*:5}" 'BEGIN {
        far = split(found, f) != split(wanted, w)
        for (i in w) far = far || (f[i] - w[i])^2 > tolerance^2
        exit far
    }' || fail "pixel $2,$3 of $1 is $(vips getpoint "$1" "$2" "$3") instead of ${*:5}"
}
# segment MARKER FILE: of a JPEG file, with its length
segment() {
    local length=$(($(stat -c %s "$2") + 2))
    printf '\xff%b' "$1"
    printf "\\x$(printf %02x $((length / 256)))\\x$(printf %02x $((length % 256)))"
    cat "$2"
}

colour red.png 400 300 200 40 40
colour green.png 600 400 90 120 60
rectangle bar.png 400 300 140 110 120 80
vips bandjoin "red.png bar.png" cut.png
flat black.png 600 400 0 3
# A photo as a camera makes it, with notes of every kind.
vips icc_transform green.png p3.png p3
printf 'Exif\0\0MM\0\x2a\0\0\0\x08\0\1\1\x3b\0\2\0\0\0\4Ann\0\0\0\0\0' >exif
printf 'http://ns.adobe.com/xap/1.0/\0<x:xmpmeta xmlns:x="adobe:ns:meta/"></x:xmpmeta>' >xmp
printf 'Photoshop 3.0\0008BIM\x04\x04\0\0\0\0\0\x08\x1c\x02\x78\0\3sea' >iptc
{
    printf 'ICC_PROFILE\0\1\1'
    field p3.png icc-profile-data | base64 -d
} >icc
vips copy p3.png 'bare.jpg[Q=100,strip]'
{
    head -c 2 bare.jpg
    segment '\xe1' exif && segment '\xe1' xmp && segment '\xed' iptc && segment '\xe2' icc
    tail -c +3 bare.jpg
} >photo.jpg
# The photo with the data in `exif` alone.
with_exif() { head -c 2 bare.jpg && segment '\xe1' exif && tail -c +3 bare.jpg; }
# number ORDER BYTES VALUE: as TIFF data hold it, the last byte first where ORDER is II
number() {
    local place places
    places=$(seq 0 $(($2 - 1)))
    [ "$1" = II ] || places=$(seq $(($2 - 1)) -1 0)
    for place in $places; do printf "\\x$(printf %02x $(($3 >> 8 * place & 255)))"; done
}
# entry ORDER TAG TYPE COUNT: what goes before a value
entry() { number "$1" 2 "$2" && number "$1" 2 "$3" && number "$1" 4 "$4"; }
# The same, taken with the camera on its side, with a thumbnail of one pixel in a second directory.
# The first directory stands behind 256 bytes, so that no number is one byte alone.
vips black dot.jpg'[strip]' 1 1
for order in MM II; do
    {
        printf 'Exif\0\0%s' $order && number $order 2 42 && number $order 4 264
        printf '%256s' && number $order 2 2
        entry $order 0x112 3 1 && number $order 2 6 && number $order 2 0
        entry $order 0x13b 2 4 && printf 'Ann\0' && number $order 4 294
        number $order 2 2 && entry $order 0x201 4 1 && number $order 4 324
        entry $order 0x202 4 1 && number $order 4 "$(stat -c %s dot.jpg)" && number $order 4 0
        cat dot.jpg
    } >exif
    with_exif >turned$order.jpg
done
mv turnedMM.jpg turned.jpg

# What the photo is, it stays, and the object comes in its colours.
photos() {
    local kind photo
    run 0 blend cut.png photo.jpg o.jpg && silent
    for kind in exif-ifd0-Artist xmp-data iptc-data icc-profile-data; do
        [ "$(field o.jpg $kind)" = "$(field photo.jpg $kind)" ] || fail "$kind of o.jpg"
    done
    run 0 blend cut.png photo.jpg o.png && says "does not keep IPTC"
    has o.png exif-ifd0-Artist && has o.png xmp-data && has o.png icc-profile-data
    run 0 blend cut.png photo.jpg o.webp && has o.webp exif-ifd0-Artist && has o.webp xmp-data
    run 0 blend cut.png photo.jpg o.tif && says "does not keep EXIF"
    has o.tif xmp-data && has o.tif iptc-data && has o.tif icc-profile-data
    run 0 blend cut.png photo.jpg o.gif && says "does not keep EXIF, XMP, IPTC, the colour profile"
    run 0 blend cut.png photo.jpg 'o.jpg[strip]' && silent
    [ -z "$(field o.jpg exif-data)" ] || fail "EXIF data in spite of strip"

    # Turned pixels are not turned again, and no thumbnail shows the photo as it was.
    [ "$(field turned.jpg orientation)" = 6 ] || fail "turned.jpg is not turned"
    has turned.jpg jpeg-thumbnail-data
    for kind in jpg png webp; do
        run 0 blend cut.png turned.jpg o.$kind && silent
        [ "$(size o.$kind) $(field o.$kind exif-ifd0-Artist | cut -c1-3)" = "400x600 Ann" ] &&
            [ "$(vips autorot o.$kind a.v && size a.v)" = 400x600 ] || fail "a turned photo"
        [ -z "$(field o.$kind jpeg-thumbnail-data)" ] || fail "an old thumbnail in o.$kind"
    done
    # A file of this kind holds the data as they are handed on, for whoever reads them.
    for photo in turned.jpg turnedII.jpg; do
        has $photo jpeg-thumbnail-data
        run 0 blend cut.png $photo o.v
        field o.v exif-data | base64 -d >exif
        with_exif >again.jpg
        has again.jpg exif-ifd0-Artist
        [ -z "$(field again.jpg jpeg-thumbnail-data)" ] || fail "an old thumbnail of $photo in o.v"
    done

    # In P3, red is (184, 56, 49); green keeps its values whatever they mean.
    run 0 blend cut.png p3.png o.png && silent
    pixel_is o.png 5 5 0 96 119 67 && pixel_is o.png 300 200 2 184 56 49
    vips icc_transform red.png redp3.png p3 && vips bandjoin "redp3.png bar.png" cutp3.png
    run 0 blend cutp3.png p3.png o.png && pixel_is o.png 300 200 2 184 56 49
    run 0 blend cutp3.png green.png o.png && pixel_is o.png 300 200 2 200 40 40
    [ -z "$(field o.png icc-profile-data)" ] || fail "a profile from the source"

    # 92 and full chroma unless told otherwise. (identify is ImageMagick's.)
    run 0 blend cut.png photo.jpg o.jpg
    [ "$(identify -format %Q o.jpg)$(field o.jpg jpeg-chroma-subsample)" = 924:4:4 ] || fail "JPEG"
    run 0 blend cut.png photo.jpg 'o.jpg[Q=60]'
    [ "$(identify -format %Q o.jpg)$(field o.jpg jpeg-chroma-subsample)" = 604:2:0 ] || fail "Q=60"
}

# Other kinds than 8-bit RGB become sRGB, and are said to.
conversions() {
    vips icc_transform green.png cmyk.jpg cmyk
    run 0 blend cut.png cmyk.jpg o.png && says "cmyk.jpg: 8-bit CMYK is converted to 8-bit sRGB"
    pixel_is o.png 5 5 2 90 120 60 && pixel_is o.png 300 200 2 200 40 40
    flat grey.png 600 400 50 1
    run 0 blend cut.png grey.png o.png && says "8-bit grey" && pixel_is o.png 5 5 0 50 50 50
    vips icc_transform green.png p3deep.png p3 --depth 16
    run 0 blend cut.png p3deep.png o.png && says "16-bit RGB" && pixel_is o.png 5 5 1 90 120 60
    [ "$(grep -c warning err)" -eq 1 ] || fail "more than one warning"

    # The destination's alpha stays, but the blended rectangle is opaque.
    flat alpha.png 600 400 77 1 && vips bandjoin "black.png alpha.png" veil.png
    run 0 blend cut.png veil.png o.png && silent
    pixel_is o.png 5 5 0 0 0 0 77 && pixel_is o.png 300 200 2 200 40 40 255
    run 0 blend cut.png veil.png o.jpg && says "no alpha channel"
    run 0 blend cut.png black.png o.pgm && says "o.pgm: this kind of file holds no colour"
    run 0 blend cut.png black.png o.csv && says "holds no colour"
    flat long.png 17000 10 0 3 # more than the format has room for
    run 73 blend cut.png long.png o.webp && says "o.webp: cannot be written: webpsave"
    # All that libvips takes from a file's name: this one has none while it is written.
    vips copy o.pgm o.v && [ "$(field o.v bands)" = 1 ] || fail "o.pgm is not grey"
    run 0 blend cut.png black.png o.v && [ "$(field o.v bands)" = 3 ] || fail "o.v"
    run 0 blend cut.png black.png o.avif && [ "$(field o.avif heif-compression)" = av1 ] || fail "avif"
}

# Each mask marks the same bar of 120 x 80.
masks() {
    local mask
    flat white1.png 400 300 255 1
    vips bandjoin "white1.png bar.png" alpha.png             # shows nothing but its alpha
    vips bandjoin "bar.png white1.png" opaque.png            # alpha that says nothing
    vips bandjoin "bar.png bar.png bar.png" rgb.v && vips copy rgb.v rgb.png --interpretation srgb
    vips cast bar.png deep.v ushort --shift && vips copy deep.v deep.png --interpretation grey16
    for mask in cut.png alpha.png opaque.png rgb.png deep.png; do
        run 0 size red.png --mask $mask && silent
        [ "$(cat out)" = "120 80" ] || fail "the mask $mask marks $(cat out)"
    done
    vips linear rgb.png tint.v "1 0.8 0.6" "0 0 0" --uchar
    vips copy tint.v tint.png --interpretation srgb
    run 0 size red.png --mask tint.png && says "tint.png: the mask is coloured"
    [ "$(cat out)" = "120 80" ] || fail "a coloured mask marks $(cat out)"

    # Half transparent in 16 bits, 0x8080, is 128 of 255; a little less is outside.
    for value in 32896 32700; do
        vips black a.v 400 300 && vips linear bar.png b.v "$(awk "BEGIN { print $value / 255 }")" 0
        vips cast b.v a.v ushort && vips cast red.png c.v ushort --shift
        vips bandjoin "c.v a.v" d.v && vips copy d.v "half$value.png" --interpretation rgb16
    done
    for mask in half32896.png "red.png --mask half32896.png"; do
        run 0 size $mask && [ "$(cat out)" = "120 80" ] || fail "16-bit alpha"
        run 65 size ${mask/32896/32700}
    done

    # What lossy compression leaves is no part of the object, and makes no hard outline soft.
    vips copy bar.png 'bar.jpg[Q=50]' && vips copy bar.jpg noisy.png
    run 0 blend red.png black.png o.png --mask bar.png
    for mask in bar.jpg noisy.png; do
        run 0 blend red.png black.png o2.png --mask $mask && cmp -s o.png o2.png || fail "noise"
    done
    # A large part that is faint is none: two fifths are black, a half lets 20 of 255 through.
    flat strong.v 240 300 255 1 && flat faint.v 200 300 20 1
    vips insert strong.v faint.v mask.v 0 0 && vips embed mask.v faint.png 160 0 400 300
    run 0 blend red.png black.png o.png --mask faint.png && pixel_is o.png 200 200 3 16 3 3
    # Noise keeps to both ends: columns of 0, 20, 100, 235 and 255, and the red of those of 235.
    local zero faint middle strong full red
    while read -r zero faint middle strong full red; do
        {
            printf 'P5 400 1 255\n'
            head -c $zero /dev/zero
            head -c $faint /dev/zero | tr '\0' '\024'
            head -c $middle /dev/zero | tr '\0' '\144'
            head -c $strong /dev/zero | tr '\0' '\353'
            head -c $full /dev/zero | tr '\0' '\377'
        } >row.pgm
        vips replicate row.pgm columns.png 1 300
        run 0 blend red.png black.png o.png --mask columns.png --no-fit
        near 4 "red beside $middle columns" "$(vips getpoint o.png 250 200 | cut -d' ' -f1)" $red
    done <<END
100 80 40 80 100 200
100 79 41 80 100 184
120 20 20 140 100 200
121 19 20 140 100 184
END
}

streams() {
    "$tool" blend cut.png - - <photo.jpg >o.out 2>err || fail "status $?"
    silent
    [ "$(field o.out vips-loader)$(field o.out exif-ifd0-Artist)" = \
        "$(field photo.jpg vips-loader)$(field photo.jpg exif-ifd0-Artist)" ] || fail "not as photo.jpg"
    run 0 blend cut.png photo.jpg o.jpg
    cmp -s o.jpg o.out || fail "standard streams give another picture"
    "$tool" blend - photo.jpg '.png[compression=0]' <cut.png >o.out 2>err || fail "status $?"
    [ "$(field o.out vips-loader)" = pngload ] || fail "a suffix does not choose the kind"
    ls .png* >/dev/null 2>&1 && fail "a file was written for a suffix alone"
    "$tool" cutout red.png --mask - - <bar.png >o.out 2>err || fail "status $?"
    [ "$(size o.out)" = 120x80 ] || fail "cut-out to standard output"
    [ "$(cat bar.png | "$tool" size -)" = "120 80" ] || fail "a mask from standard input"
    run 64 blend - - o.png && says "standard input"
    run 64 blend cut.png black.png .xyz
    "$tool" batch - 2>err <<<'{"source":"cut.png","destination":"black.png","output":".png"}'
    says "output: standard streams"
    run 66 blend - black.png o.png </dev/null && says "standard input: cannot be read"

    "$tool" size bar.png >/dev/full 2>err
    [ $? -eq 73 ] || fail "a full standard output goes unnoticed"
    "$tool" blend cut.png photo.jpg - >/dev/full 2>err
    [ $? -eq 73 ] || fail "a picture that does not fit goes unnoticed"
}

# Pictures that name other files, under a name that says nothing of it.
hostile() {
    colour secret.png 20 20 1 2 3
    local href='xlink:href="secret.png"' kind
    cat >svg.jpg <<END
<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="400"
    height="300"><image $href width="400" height="300"/></svg>
END
    printf 'push graphic-context\nviewbox 0 0 400 300\nimage over 0,0 0,0 "secret.png"\n%s\n' \
        'pop graphic-context' >mvg.jpg
    printf '%%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]%s\n' \
        '/Count 1>>endobj 3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 400 300]>>endobj trailer<</Root 1 0 R>>' \
        >pdf.jpg
    vips copy green.png green.ppm
    strace -o /dev/null true 2>/dev/null || echo "strace cannot be used"
    for kind in svg mvg pdf; do
        run 66 blend $kind.jpg black.png o.png --mask bar.png
        run 66 blend - black.png o.png --mask bar.png <$kind.jpg
        run 66 blend cut.png $kind.jpg o.png
        run 66 blend red.png black.png o.png --mask $kind.jpg
        strace -o /dev/null true 2>/dev/null || continue
        strace -f -e trace=open,openat -o trace \
            "$tool" blend $kind.jpg black.png o.png --mask bar.png 2>err
        grep -v ' = -1 ' trace | sed -n 's/.*"\(.*\)".*/\1/p' | grep -v '\.so[.0-9]*$' |
            grep -vE '^/(usr|lib|etc|proc|sys|dev)/' | sed "s:^$work/*::" | sort -u >opened
        [ "$(xargs <opened)" = "black.png $kind.jpg" ] || fail "opened $(xargs <opened)"
    done
    run 66 blend cut.png green.ppm o.png && says "read under --any-format only (ppmload)"
    run 0 blend cut.png green.ppm o.png --any-format
    if vips copy svg.jpg svg.v 2>/dev/null; then
        run 0 blend svg.jpg black.png o.png --mask bar.png --any-format
    fi
    [ ! -e o.png ] || rm o.png

    # A small file that is large when it is decoded.
    vips black bomb.png 20001 10000
    run 65 blend cut.png bomb.png o.png && says "200010000 pixels, more than --max-pixels 200000000"
    run 65 blend bomb.png black.png o.png && run 65 blend red.png black.png o.png --mask bomb.png
    run 65 verify cut.png bomb.png
    run 0 blend cut.png black.png o.png --max-pixels 240k
    run 65 blend cut.png black.png o.png --max-pixels 239999 && says "black.png: 600 x 400"
    run 64 blend cut.png black.png o.png --max-pixels 0
}

places() {
    mkfifo pipe.png
    "$tool" blend cut.png black.png pipe.png 2>err &
    cat pipe.png >o.out
    wait $! || fail "an output that is a pipe"
    [ -p pipe.png ] || fail "the pipe was replaced"
    run 0 blend cut.png black.png o.png
    cmp -s o.png o.out || fail "a pipe gets another picture"
    run 0 blend cut.png black.png /dev/null && [ -c /dev/null ] || fail "/dev/null"
    run 0 blend <(cat cut.png) <(cat black.png) p.png && cmp -s o.png p.png || fail "inputs that are pipes"

    ln -s nowhere.png dangling.png
    run 73 blend cut.png black.png dangling.png && says "dangling.png: cannot be written: a symbolic link"
    [ ! -e nowhere.png ] && [ -L dangling.png ] || fail "something was written by a dangling link"
    mkdir folder.png
    run 73 blend cut.png black.png folder.png
    mkdir -p deep/er && ln -s ../o.png deep/link.png
    run 0 blend cut.png green.png deep/link.png && [ -L deep/link.png ] || fail "a link was replaced"
    pixel_is o.png 5 5 0 90 120 60

    # A new file gets what the umask leaves, a replaced one keeps its permissions.
    for kind in png v; do # with and without a name while it is written
        (umask 027 && "$tool" blend cut.png black.png mode.$kind)
        [ "$(stat -c %a mode.$kind)" = 640 ] || fail "permissions of a new file: $(stat -c %a mode.$kind)"
        chmod 604 mode.$kind
        run 0 blend cut.png green.png mode.$kind
        [ "$(stat -c %a mode.$kind)" = 604 ] || fail "permissions of a replaced file"
    done
    no_leftovers
}

# A warning is printed, counted or silenced; under --strict nothing is written.
warnings() {
    run 0 blend cut.png grey.png w.png && says "warning: grey.png"
    run 0 blend cut.png grey.png w.png --quiet && silent
    rm w.png
    run 4 blend cut.png grey.png w.png --strict && says "w.png: is not written: a warning"
    run 4 blend cut.png photo.jpg w.tif --strict && says "EXIF"
    run 4 blend cut.png photo.jpg .tif --strict && [ ! -s out ] || fail "written in spite of a warning"
    run 4 size red.png --mask tint.png --strict --quiet
    [ "$(wc -l <err)" -eq 1 ] || fail "warnings in spite of --quiet"
    printf '{"source":"cut.png","destination":"grey.png","output":"%s"}\n' w.png >jobs
    run 3 batch jobs --strict && says "w.png failed"
    [ -z "$(find . -name 'w.*')" ] || fail "written in spite of a warning"
    run 0 blend cut.png black.png w.png --strict && silent
    run 0 batch jobs --quiet --overwrite && ! grep -q warning: err || fail "a warning of a batch"

    # The file is in place before a warning meets a pipe that nobody reads.
    rm w.png
    (sleep 0.2 && exec "$tool" blend cut.png grey.png w.png 2>&1) | true
    [ "$(size w.png)" = 600x400 ] || fail "a closed pipe costs the output"
    no_leftovers
}

# Whatever ends a run, the output is whole or not there, and nothing else is.
signals() {
    local names=(HUP INT QUIT TERM USR1 USR2 ALRM XCPU PIPE PROF VTALRM ABRT TRAP SYS RTMIN)
    is_sanitized || names+=(SEGV) # a sanitizer takes it
    local i kind name
    vips gaussnoise n.v 1500 1000 && vips cast n.v n2.v uchar
    vips bandjoin "n2.v n2.v n2.v" n3.v && vips copy n3.v noise.png --interpretation srgb
    mkdir ended
    run 0 blend cut.png noise.png whole.v
    local start=${EPOCHREALTIME/./}
    run 0 blend cut.png noise.png whole.jpg
    local duration=$((${EPOCHREALTIME/./} - start)) # in microseconds
    for ((i = 0; i < signal_runs; i++)); do
        kind=$([ $((i % 2)) -eq 0 ] && echo jpg || echo v)
        name=${names[i / 2 % ${#names[@]}]}
        env --default-signal=INT,QUIT "$tool" blend cut.png noise.png ended/o.$kind 2>/dev/null &
        sleep "$(awk "BEGIN { print $RANDOM / 32768 * $duration / 1e6 }")"
        kill -"$name" $! 2>/dev/null
        [ $((i % 3)) -eq 0 ] && kill -TERM $! 2>/dev/null # a second one
        wait $! 2>/dev/null
        last="$name, run $i"
        find ended -name '.*' -type f | grep -q . && fail "$(ls -A ended) is left"
        [ ! -e ended/o.$kind ] || cmp -s ended/o.$kind whole.$kind || fail "half a file"
        find ended -type f -delete
    done 2>/dev/null
    last="nohup"
    mkfifo never.png
    (trap '' HUP && exec "$tool" blend never.png black.png ended/o.v) &
    wait_for 1 ended '.*.v'
    kill -HUP $!
    cat cut.png >never.png
    wait $! || fail "a signal that is ignored ends the command"
    [ "$(size ended/o.v)" = 600x400 ] || fail "no output"
}

# A write that fails in the middle keeps the old output. 16 blocks of 512 or 1024 bytes. Limits of
# the address space: the system's loader fails below, with a status of its own.
limits() {
    local kind limit status
    for kind in png v; do
        cp cut.png o.$kind
        (ulimit -f 16 && "$tool" blend cut.png noise.png o.$kind 2>err)
        [ $? -eq 73 ] || fail "a write that fails goes unnoticed"
        says "o.$kind: cannot be written"
        cmp -s cut.png o.$kind || fail "a failed write touched the old output"
    done
    rm o.png
    (ulimit -v 8000000 && "$tool" --version >out 2>&1) || return # a sanitizer takes more
    for limit in $(seq 108 14 332); do
        (ulimit -v $((limit * 1000)) && "$tool" blend cut.png noise.png o.png >/dev/null 2>err)
        status=$?
        [ $status -eq 0 ] || [ $status -eq 127 ] || [ "$status $(wc -l <err)" = "70 1" ] ||
            fail "status $status with $limit megabytes"
        [ $status -eq 0 ] || [ ! -e o.png ] || fail "half a file"
        rm -f o.png
    done
    no_leftovers
}

groups photos conversions masks streams hostile places warnings signals limits
