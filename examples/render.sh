#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Remakes the example pictures and masks from scenes/.
# Usage: examples/render.sh [folder for the results, default: this folder]
set -eu

here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "${1:-$here}"
results=$(cd "${1:-$here}" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

if ! command -v povray > /dev/null || ! command -v vips > /dev/null; then
  as_root apt-get update
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
    povray povray-includes libvips-tools
fi

# trace SCENE WIDTH HEIGHT RESULT [OPTION...]: one thread, so that jitter and
# the order of radiosity samples do not vary between runs.
trace() {
  scene=$1 width=$2 height=$3 result=$4
  shift 4
  if ! (cd "$here/scenes" && povray "+I$scene.pov" "+O$result" "+W$width" "+H$height" \
    +FN8 +WT1 -D +A0.1 +AM2 +R2 -J "$@") > "$scratch/log" 2>&1; then
    cat "$scratch/log" >&2
    echo "render.sh: povray failed on $here/scenes/$scene.pov" >&2
    exit 1
  fi
}

# photo SCENE WIDTH HEIGHT SEED: renders, adds film grain.
photo() {
  name=$1
  trace "$name" "$2" "$3" "$scratch/$name.png"
  vips gaussnoise "$scratch/noise.v" "$2" "$3" --mean 0 --sigma 3.5 --seed "$4"
  vips gaussblur "$scratch/noise.v" "$scratch/grain.v" 0.6
  vips add "$scratch/$name.png" "$scratch/grain.v" "$scratch/sum.v"
  vips cast "$scratch/sum.v" "$scratch/photo.v" uchar
  vips jpegsave "$scratch/photo.v" "$results/$name.jpg" --Q 90 --optimize-coding --strip
  report "$name.jpg"
}

# coverage SCENE WIDTH HEIGHT RESULT: how much of each pixel the object covers, by 64 rays.
coverage() {
  trace "$1" $((8 * $2)) $((8 * $3)) "$scratch/fine.png" -A Declare=Mask=1
  vips extract_band "$scratch/fine.png" "$scratch/band.v" 0
  vips shrink "$scratch/band.v" "$4" 8 8
}

# shadow SCENE WIDTH HEIGHT RESULT: which part of the ground's light the jar takes away, in the
# channel that loses most. A few levels of the whole beach's light are no shadow.
shadow() {
  trace "$1" "$2" "$3" "$scratch/lit.png" +FN16 Declare=Jar=0
  trace "$1" "$2" "$3" "$scratch/shaded.png" +FN16 Declare=Jar=2
  vips divide "$scratch/shaded.png" "$scratch/lit.png" "$scratch/left.v"
  for channel in 0 1 2; do
    vips extract_band "$scratch/left.v" "$scratch/left$channel.v" "$channel"
  done
  vips bandrank "$scratch/left0.v $scratch/left1.v $scratch/left2.v" "$scratch/least.v" --index 0
  vips linear --uchar -- "$scratch/least.v" "$scratch/taken.v" -255 255
  vips rank "$scratch/taken.v" "$scratch/clean.v" 3 3 4
  vips linear --uchar -- "$scratch/clean.v" "$scratch/steep.v" 2 -24
  vips bandrank "$scratch/clean.v $scratch/steep.v" "$4" --index 0
}

save_mask() {
  vips pngsave "$1" "$results/$2" --compression 9 --strip
  report "$2"
}

report() {
  path=$results/$1
  echo "$1: $(vipsheader -f width "$path") x $(vipsheader -f height "$path")," \
    "$(wc -c < "$path") bytes"
}

coverage balloon 900 700 "$scratch/balloon.v"
save_mask "$scratch/balloon.v" balloon-mask.png
# The jar, and its shadow where the jar does not hide it.
coverage vase 900 700 "$scratch/jar.v"
shadow vase 900 700 "$scratch/shadow.v"
vips invert "$scratch/jar.v" "$scratch/open.v"
vips multiply "$scratch/shadow.v" "$scratch/open.v" "$scratch/seen.v"
vips linear "$scratch/seen.v" "$scratch/share.v" -- 0.00392156862745098 0
vips add "$scratch/jar.v" "$scratch/share.v" "$scratch/sum.v"
vips linear --uchar -- "$scratch/sum.v" "$scratch/vase.v" 1 0
save_mask "$scratch/vase.v" vase-mask.png
photo balloon 900 700 1
photo lake 1280 853 2
photo dunes 1280 853 3
photo vase 900 700 4
