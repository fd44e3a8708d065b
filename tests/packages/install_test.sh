#!/usr/bin/env bash
# install_test.sh BUILD CMAKE CC: installs a build, moves it, and builds a consumer against its CMake
# package and another against its pkg-config file.
set -euo pipefail
build=$1 cmake=$2
consumer=$(cd "$(dirname "$0")" && pwd)/consumer
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export CC=$3

fail() {
    echo "FAILED: $*"
    exit 1
}

DESTDIR='' "$cmake" --install "$build" --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved here"
prefix="$work/moved here"
version=$(sed -n 's/^#define IMAGEBLEND_VERSION_[A-Z]* //p' "$prefix/include/imageblend.h" |
    paste -sd.)
major=${version%%.*}

# configure VERSION: as a project that asks for that version of the package.
configure() {
    "$cmake" -S "$consumer" -B "$work/consumer-$1" -DCMAKE_PREFIX_PATH="$prefix" \
        -Dwanted_version="$1" 2>&1
}
configure "$version" >"$work/log" || fail "$(cat "$work/log")"
grep -q "imageblend_VERSION=$version$" "$work/log" || fail "$(cat "$work/log")"
"$cmake" --build "$work/consumer-$version" >"$work/log" 2>&1 || fail "$(cat "$work/log")"
said=$("$work/consumer-$version/consumer")
[ "$said" = "$version 2x1" ] || fail "the CMake consumer says $said"
configure $((major - 1)).0 >"$work/log" && fail "version $version passes for the major one before it"

pc=$(cd "$prefix" && find . -name imageblend.pc)
PKG_CONFIG_PATH=$(dirname "$prefix/$pc")
export PKG_CONFIG_PATH
[ "$(pkg-config --modversion imageblend)" = "$version" ] || fail "pkg-config gives another version"
# pkg-config escapes the blank in the folder's name for the shell.
eval "$CC $consumer/main.c -o $work/consumer $(pkg-config --cflags --libs imageblend)"
libraries=$(dirname "$prefix/$pc")/..
said=$(LD_LIBRARY_PATH=$libraries "$work/consumer")
[ "$said" = "$version 2x1" ] || fail "the pkg-config consumer says $said"
