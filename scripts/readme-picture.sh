#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes docs/before-after.jpg from the example pictures and what scripts/demo.sh has made of them.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages libvips-tools
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# Two rows: the object's picture, the destination, the blend.
panels=()
for picture in examples/balloon examples/lake out/balloon examples/vase examples/dunes out/vase; do
    panel=$folder/$(basename "$(dirname "$picture")")-$(basename "$picture").png
    vips thumbnail "$root/$picture.jpg" "$panel" 420 --height 280 --crop centre
    panels+=("$panel")
done
vips arrayjoin "${panels[*]}" "$root/docs/before-after.jpg[Q=88,strip]" \
    --across 3 --shim 6 --background 255
