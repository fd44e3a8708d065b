#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# elf_test.sh READELF STRIP MOST_BYTES LIBRARY: what the shared library promises to the loader.
set -euo pipefail
readelf=$1 strip=$2 most_bytes=$3 library=$4
export LC_ALL=C
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
failures=0

# is WHAT ACTUAL EXPECTED: EXPECTED is a regular expression for the whole.
is() {
    [[ $2 =~ ^($3)$ ]] && return
    echo "FAILED: $library: $1: \"$2\", must be $3"
    failures=$((failures + 1))
}

header=$("$readelf" --file-header "$library")
symbols=$("$readelf" --wide --dyn-syms "$library" |
    awk '$1 ~ /^[0-9]+:$/ && $7 != "UND" && $5 != "LOCAL" { sub(/@.*/, "", $8); print $8 }' |
    sort | paste -sd' ')
is exports "$symbols" \
    'vorn_create_rgb_icon vorn_get_icon_size vorn_imageBlending vorn_verify_icon_pos'

dynamic=$("$readelf" --wide --dynamic "$library")
# The values in brackets of a tag of the dynamic section.
tag() { sed -n "s/.*($1) .*\[\(.*\)\]/\1/p" <<<"$dynamic" | paste -sd' '; }
is soname "$(tag SONAME)" 'libimageblend\.so'
# On 64-bit Arm the loader holds the value that guards the stack.
is 'needed libraries' "$(tag NEEDED)" 'libm\.so\.6 libc\.so\.6( ld-linux-aarch64\.so\.1)?'

segments=$("$readelf" --wide --segments "$library")
# Android and 64-bit Arm may have pages of 16 KB.
page=0x4000
if grep -q 'Machine: *Advanced Micro Devices X86-64' <<<"$header"; then page=0x1000; fi
is alignments "$(awk '$1 == "LOAD" { print $NF }' <<<"$segments" | sort -u | paste -sd' ')" $page

# Indirect branches and return addresses are protected only if every function agreed to it.
if grep -q 'Machine: *AArch64' <<<"$header"; then
    notes=$("$readelf" --notes "$library" 2>/dev/null)
    is 'branch protection' "$(grep -o 'BTI, PAC' <<<"$notes")" 'BTI, PAC'
fi

"$strip" -o "$stripped" "$library"
bytes=$(stat -c %s "$stripped")
echo "$library: $bytes bytes stripped"
[ "$bytes" -lt "$most_bytes" ] || is size "$bytes" "below $most_bytes"
[ "$failures" -eq 0 ]
