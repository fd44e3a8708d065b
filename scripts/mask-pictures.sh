#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the pictures of docs/masks.md from the example pictures: docs/masks-*.jpg.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages "${build_packages[@]}" libvips-tools fonts-dejavu-core
cmake -S "$root" -B "$root/build" -DCMAKE_BUILD_TYPE=Release
cmake --build "$root/build" -j "$(nproc)" --target imageblend_tool
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# blend OBJECT DESTINATION MASK ARGUMENT...: into $folder/SIDE.png, SIDE being the variable.
blend() {
    local object=$1 destination=$2 mask=$3
    shift 3
    "$root/build/imageblend" blend "$root/examples/$object.jpg" "$root/examples/$destination.jpg" \
        "$folder/$side.png" --mask "$mask" "$@"
}
balloon() { blend balloon lake "$1" --at 750,215 --zoom 0.65 "${@:2}"; }
jar() { blend vase dunes "$1" --at "$2" --zoom 0.75 "${@:3}"; }

# caption TEXT WIDTH: a strip with the text in $folder/caption.png
caption() {
    vips text --font "DejaVu Sans 14" --dpi 72 -- "$folder/letters.v" "$1"
    vips invert "$folder/letters.v" "$folder/dark.v"
    vips gravity "$folder/dark.v" "$folder/caption.png" centre "$2" 30 --extend white
}

# picture NAME LEFT TOP TEXT TEXT: the same 240 x 190 pixels of both sides, twice as large.
picture() {
    local name=$1 left=$2 top=$3 panels=()
    shift 3
    for side in before after; do
        vips extract_area "$folder/$side.png" "$folder/part.v" "$left" "$top" 240 190
        vips zoom "$folder/part.v" "$folder/large.v" 2 2
        caption "$1" 480
        vips join "$folder/large.v" "$folder/caption.png" "$folder/$side-panel.v" vertical
        panels+=("$folder/$side-panel.v")
        shift
    done
    vips arrayjoin "${panels[*]}" "$root/docs/masks-$name.jpg[Q=88,no-subsample,strip]" \
        --across 2 --shim 6 --background 255
    echo "docs/masks-$name.jpg"
}

balloon_mask=$root/examples/balloon-mask.png jar_mask=$root/examples/vase-mask.png

side=before balloon "$balloon_mask" --as-is
side=after balloon "$balloon_mask"
picture as-is 630 190 "--as-is" "prepared"

# Without the shadow, which is far below 192. The dark part of a shadow counts to the object's box, so
# the two are given other middles.
vips relational_const "$jar_mask" "$folder/no-shadow.png" moreeq 192
side=before jar "$folder/no-shadow.png" 640,500
side=after jar "$jar_mask" 662,500
picture shadow 585 480 "the mask has the jar" "the mask has its shadow, too"

side=before jar "$jar_mask" 662,500 --surroundings 0
side=after jar "$jar_mask" 662,500 --surroundings 24
picture surroundings 585 480 "--surroundings 0" "--surroundings 24"

# Where a wide blur is still above a sixth, which lies 6 pixels outside of the outline.
vips gaussblur "$balloon_mask" "$folder/blurred.v" 6
vips relational_const "$folder/blurred.v" "$folder/wide.png" more 40
side=before balloon "$folder/wide.png" --no-fit
side=after balloon "$folder/wide.png"
picture fit 630 190 "6 pixels too wide, --no-fit" "fitted"
