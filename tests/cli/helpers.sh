# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Sourced by the tests of the command line: $tool is the command, the test runs in a new folder.
# With IMAGEBLEND_STOP_AT_FAILURE, it ends with its first failure.
set -u
tool=$(realpath "$1")
work=$(mktemp -d)
# A child that a signal ends before it becomes another program comes here, too, and there `[` may
# fail with any test. So it is the test that succeeds that removes the folder.
trap 'if [ $BASHPID -eq $$ ]; then rm -rf "$work"; fi' EXIT
cd "$work" || exit 1
# Nothing of the login that runs the test matters.
export LC_ALL=C SHELL=/bin/sh HOME="$work"
unset IMAGEBLEND_LOG PARALLEL
failures=0

fail() {
    echo "FAILED: $*: $last"
    [ -s err ] && tail -n 20 err | sed 's/^/    stderr: /'
    failures=$((failures + 1))
    [ -z "${IMAGEBLEND_STOP_AT_FAILURE-}" ] || exit 1
}

# run STATUS ARGUMENT...: standard output goes to `out`, standard error to `err`.
run() {
    local wanted=$1 status
    shift
    last="$*"
    "$tool" "$@" >out 2>err
    status=$?
    [ $status -eq "$wanted" ] || fail "status $status instead of $wanted"
}
says() { grep -qF -- "$1" err || fail "no '$1' on standard error"; }
no_leftovers() { [ -z "$(find . -name '.imageblend*')" ] || fail "a temporary file is left"; }
# wait_for COUNT FOLDER PATTERN: until so many files of these names are there
wait_for() {
    for _ in $(seq 600); do
        [ "$(find "$2" -name "$3" | wc -l)" -lt "$1" ] || return 0
        sleep 0.02
    done
    fail "no $1 files $3 in $2"
}

size() { echo "$(vipsheader -f width "$1")x$(vipsheader -f height "$1")"; }
# flat FILE WIDTH HEIGHT VALUE BANDS
flat() {
    vips black flat.v "$2" "$3" --bands "$5"
    vips linear flat.v flat2.v 0 "$4" --uchar
    vips copy flat2.v "$1" --interpretation "$([ "$5" -eq 1 ] && echo b-w || echo srgb)"
}
# rectangle FILE WIDTH HEIGHT LEFT TOP RECTANGLE_WIDTH RECTANGLE_HEIGHT: white on black, one band
rectangle() {
    flat rectangle.v "$6" "$7" 255 1
    vips embed rectangle.v "$1" "$4" "$5" "$2" "$3"
}

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

# at_least FILE VALUE: all bands of all pixels
at_least() { [ "$(vips min "$1" | cut -d. -f1)" -ge "$2" ] || fail "darker than $2"; }

# The address sanitizer needs address space and descriptors, which some tests limit.
is_sanitized() { grep -q __asan_init "$tool"; }

# groups NAME...: runs the functions of these names and ends the test.
groups() {
    for group in "$@"; do
        last=$group
        $group
    done
    [ $failures -eq 0 ] && echo "all passed"
    exit $((failures > 0))
}
