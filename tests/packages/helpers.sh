# SPDX-License-Identifier: Apache-2.0
# Sourced by the tests of packages: small pictures and the example program on them.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
example=$root/examples/program
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
log=$work/log

fail() {
    echo "FAILED: $*"
    exit 1
}

# quietly COMMAND...: its output is shown only when it fails.
quietly() { "$@" >"$log" 2>&1 || fail "$*: $(cat "$log")"; }

# An object of 64 x 20 pixels in frames of 64 x 60.
colour_picture() { printf 'P6\n64 60\n255\n' && head -c 11520 < <(seq "$1" 9999); }
colour_picture 1 >"$work/object.ppm"
colour_picture 5000 >"$work/photo.ppm"
{
    printf 'P5\n# the object\n64 60\n255\n'
    head -c $((64 * 20)) /dev/zero
    head -c $((64 * 20)) /dev/zero | tr '\0' '\377'
    head -c $((64 * 20)) /dev/zero
} >"$work/mask.pgm"

# blends PROGRAM...: the example program pastes the object; all programs give the same bytes.
blends() {
    rm -f "$work/result.ppm"
    (cd "$work" && "$@" object.ppm mask.pgm photo.ppm result.ppm 32 30 0.5) >"$log" 2>&1 ||
        fail "$*: $(cat "$log")"
    cmp -s "$work/result.ppm" "$work/photo.ppm" && fail "$*: blended nothing"
    [ -e "$work/expected.ppm" ] || cp "$work/result.ppm" "$work/expected.ppm"
    cmp "$work/result.ppm" "$work/expected.ppm" || fail "$*: differs from the first program"
}
