#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what is missing, builds the command line and blends the example pictures into out/.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages "${build_packages[@]}"
cmake -S "$root" -B "$root/build" -DCMAKE_BUILD_TYPE=Release -DIMAGEBLEND_BUILD_TESTS=OFF \
    -DIMAGEBLEND_BUILD_BENCH=OFF -DIMAGEBLEND_BUILD_JAVA=OFF
cmake --build "$root/build" -j "$(nproc)" --target imageblend_tool

examples=$root/examples
mkdir -p "$root/out"

# blend NAME OBJECT DESTINATION ARGUMENT...: the object into out/NAME.jpg
blend() {
    local name=$1 object=$2 destination=$3
    shift 3
    "$root/build/imageblend" blend "$examples/$object.jpg" "$examples/$destination.jpg" \
        "$root/out/$name.jpg" --mask "$examples/$object-mask.png" "$@"
    pictures+=("$root/out/$name.jpg")
}

pictures=()
blend balloon          balloon lake  --at 750,215 --zoom 0.65
blend balloon-far      balloon lake  --at 420,190 --zoom 0.25
blend balloon-turned   balloon lake  --at 750,230 --zoom 0.6 --angle 20
blend vase             vase    dunes --at 640,535 --zoom 0.75
blend vase-small       vase    dunes --at 980,400 --zoom 0.3
blend vase-turned      vase    dunes --at 640,535 --zoom 0.7 --angle -8

echo
echo "The blended pictures:"
printf '  %s\n' "${pictures[@]}"
