#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# hardening_test.sh READELF FORTIFIED FOLDER... -- FILE...: how every program and shared library is
# made safe. FORTIFIED is 1 where copies are checked; no FILE may name one of the FOLDERs.
set -euo pipefail
readelf=$1 fortified=$2
shift 2
export LC_ALL=C
failures=0
folders=()
while [ "$1" != -- ]; do
    folders+=("$1")
    shift
done
shift

# is WHAT ACTUAL EXPECTED: EXPECTED is a regular expression for the whole.
is() {
    [[ $2 =~ ^($3)$ ]] && return
    echo "FAILED: $file: $1: \"$2\", must be $3"
    failures=$((failures + 1))
}

for file in "$@"; do
    is 'type' "$("$readelf" --file-header "$file" | awk '$1 == "Type:" { print $2 }')" DYN
    dynamic=$("$readelf" --wide --dynamic "$file")
    is 'flags for binding at load time' "$(grep -cE 'FLAGS_1\).*NOW' <<<"$dynamic")" 1
    is 'relocations in the text' "$(grep -c TEXTREL <<<"$dynamic")" 0
    # An empty entry, or one without a slash or $ORIGIN in front, is looked for in the current folder.
    is 'folders searched' "$(sed -n 's/.*(R\(UN\)\?PATH) .*\[\(.*\)\]/\2/p' <<<"$dynamic")" '|\$ORIGIN'
    segments=$("$readelf" --wide --segments "$file")
    is 'rights of the stack' "$(sed -n 's/^ *GNU_STACK .* \([RWE]\+\) *0x.*/\1/p' <<<"$segments")" RW
    is 'segments both writable and executable' "$(grep -cE '^ *LOAD .* RWE ' <<<"$segments")" 0
    is 'read-only relocations' "$(grep -c GNU_RELRO <<<"$segments")" 1
    imports=$("$readelf" --wide --dyn-syms "$file" | awk '$7 == "UND" { sub(/@.*/, "", $8); print $8 }')
    is 'guarded stacks' "$(grep -cx __stack_chk_fail <<<"$imports")" 1
    [ "$fortified" = 0 ] || is 'checked copies' "$(grep -cE '^__[a-z]+_chk$' <<<"$imports")" '[1-9][0-9]*'
    for folder in "${folders[@]}"; do
        is "mentions of $folder" "$(grep -caP "(?<![\w.-])\Q$folder\E(?![\w.-])" "$file")" 0
    done
done
[ "$failures" -eq 0 ]
