#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# readme_test.sh REPOSITORY BUILD: runs what the README prints, in a copy of the examples.
set -euo pipefail
repository=$(cd "$1" && pwd) build=$(cd "$2" && pwd)
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cp "$repository"/examples/*.{jpg,png} "$folder"
cd "$folder"
export PATH=$build:$PATH

# Lines of the blocks of one kind, those that run the scripts aside.
blocks() { awk -v kind="^\`\`\`$1\$" '/^```/ { inside = $0 ~ kind; next } inside' "$repository/README.md"; }

blocks sh | while IFS= read -r line; do
    case $line in
        scripts/*) [ -x "$repository/${line%% *}" ] || { echo "no script: $line"; exit 1; } ;;
        *) echo "+ $line"; bash -ec "$line" </dev/null ;;
    esac
done
for picture in vase-on-dunes.png vase-alone.png stages.png up.jpg; do
    [ -s "$picture" ] || { echo "the README's commands made no $picture"; exit 1; }
done

blocks c >paste.c
"${CC:-cc}" -std=c99 -Wall -Werror -c paste.c -I"$repository/include"
for link in $(grep -o '](\([^)#]*\))' "$repository/README.md" | sed 's/](//; s/)//'); do
    [ -e "$repository/$link" ] || { echo "the README links to $link, which is not there"; exit 1; }
done
