#!/bin/sh
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

# photo SCENE WIDTH HEIGHT SEED: renders, softens like a lens, adds film grain.
photo() {
  name=$1
  trace "$name" "$2" "$3" "$scratch/$name.png"
  vips gaussblur "$scratch/$name.png" "$scratch/soft.v" 0.5
  vips gaussnoise "$scratch/noise.v" "$2" "$3" --mean 0 --sigma 3.5 --seed "$4"
  vips gaussblur "$scratch/noise.v" "$scratch/grain.v" 0.6
  vips add "$scratch/soft.v" "$scratch/grain.v" "$scratch/sum.v"
  vips cast "$scratch/sum.v" "$scratch/photo.v" uchar
  vips jpegsave "$scratch/photo.v" "$results/$name.jpg" --Q 90 --optimize-coding --strip
  report "$name.jpg"
}

# mask SCENE WIDTH HEIGHT: renders the white object and grows it by about 7
# pixels: 3 by a maximum filter, the rest by cutting a blur at an eighth.
mask() {
  name=$1
  trace "$name" "$2" "$3" "$scratch/mask.png" Declare=Mask=1
  vips extract_band "$scratch/mask.png" "$scratch/band.v" 0
  vips rank "$scratch/band.v" "$scratch/wide.v" 7 7 48
  vips gaussblur "$scratch/wide.v" "$scratch/blur.v" 3.5
  vips linear --uchar -- "$scratch/blur.v" "$scratch/grown.v" 6 -64
  vips pngsave "$scratch/grown.v" "$results/$name-mask.png" --compression 9 --strip
  report "$name-mask.png"
}

report() {
  path=$results/$1
  echo "$1: $(vipsheader -f width "$path") x $(vipsheader -f height "$path")," \
    "$(wc -c < "$path") bytes"
}

mask balloon 900 700
mask vase 900 700
photo balloon 900 700 1
photo lake 1280 853 2
photo dunes 1280 853 3
photo vase 900 700 4
