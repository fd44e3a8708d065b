#!/usr/bin/env bash
# elf_test.sh READELF STRIP MOST_BYTES LIBRARY [FIFTH_EXPORT CARELESS]
#
# Checks what the shared library promises to the loader. The other two are copies of it with known
# faults, which the same checks must name: one function too many, and everything else.
set -euo pipefail
readelf=$1 strip=$2 most_bytes=$3 library=$4
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

exports_wanted='vorn_create_rgb_icon vorn_get_icon_size vorn_imageBlending vorn_verify_icon_pos'
page_bytes=16384

exported() {
    "$readelf" --wide --dyn-syms "$1" |
        awk '$1 ~ /^[0-9]+:$/ && $7 != "UND" && $5 != "LOCAL" { sub(/@.*/, "", $8); print $8 }' |
        sort | paste -sd' '
}

# The value in brackets of a tag of the dynamic section.
dynamic() {
    "$readelf" --wide --dynamic "$1" | sed -n "s/.*($2) .*\[\(.*\)\]/\1/p"
}

check_names() {
    local actual name
    actual=$(exported "$1")
    [ "$actual" = "$exports_wanted" ] || echo "exports: $actual; must be: $exports_wanted"
    actual=$(dynamic "$1" SONAME)
    [ "$actual" = libimageblend.so ] || echo "soname: $actual; must be libimageblend.so"
    for name in $(dynamic "$1" NEEDED); do
        [[ $name =~ ^lib(log|m|c)\.so(\.[0-9]+)?$ ]] ||
            echo "needed: $name; must be liblog, libm or libc"
    done
}

check_segments() {
    local segments align
    segments=$("$readelf" --wide --segments "$1")
    for align in $(awk '$1 == "LOAD" { print $NF }' <<<"$segments"); do
        (((align) % page_bytes == 0)) || echo "alignment: $align; must be a multiple of $page_bytes"
    done
    grep -Eq '^ *GNU_STACK .* RW +0x' <<<"$segments" || echo "stack: may be executable"
    grep -Eq '^ *LOAD .* RWE ' <<<"$segments" && echo "segment: writable and executable"
    grep -q GNU_RELRO <<<"$segments" || echo "relro: no such segment"
    return 0
}

check_dynamic() {
    local dynamic
    dynamic=$("$readelf" --wide --dynamic "$1")
    grep -Eq 'BIND_NOW|FLAGS_1\).*NOW' <<<"$dynamic" || echo "binding: lazy, must be at load time"
    grep -q TEXTREL <<<"$dynamic" && echo "relocations: in the text"
    return 0
}

# Indirect branches and return addresses are protected only if every function agreed to it.
check_branch_protection() {
    "$readelf" --file-header "$1" | grep -q 'Machine: *AArch64' || return 0
    "$readelf" --notes "$1" 2>/dev/null | grep -q 'BTI, PAC' ||
        echo "branch protection: no BTI, PAC"
}

check_size() {
    local bytes
    "$strip" -o "$work/stripped.so" "$1"
    bytes=$(stat -c %s "$work/stripped.so")
    ((bytes < most_bytes)) || echo "size: $bytes stripped; must be below $most_bytes"
    echo "$1: $bytes bytes stripped" >&2
}

# One line for each fault.
faults() {
    check_names "$1"
    check_segments "$1"
    check_dynamic "$1"
    check_branch_protection "$1"
    check_size "$1"
}

fail() {
    echo "FAILED: $*"
    exit 1
}

found=$(faults "$library")
[ -z "$found" ] || fail "$library:"$'\n'"$found"

if [ $# -gt 4 ]; then
    # With one function more the file may need another page.
    found=$(faults "$5" | grep -v '^size:')
    [[ $found == exports:*vorn_fifth* && $(wc -l <<<"$found") -eq 1 ]] ||
        fail "a fifth function gives, in place of one fault of the exports:"$'\n'"$found"
    found=$(faults "$6")
    kinds=(soname needed alignment stack relro binding relocations size)
    if "$readelf" --file-header "$6" | grep -q AArch64; then kinds+=('branch protection'); fi
    for kind in "${kinds[@]}"; do
        grep -q "^$kind:" <<<"$found" ||
            fail "no fault of the $kind is found in $6, only:"$'\n'"$found"
    done
fi
echo "as promised: $library"
