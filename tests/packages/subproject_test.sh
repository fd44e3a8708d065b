#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# subproject_test.sh CMAKE CC CXX: the library as a part of another project, shared and static.
set -euo pipefail
cmake=$1
export CC=$2 CXX=$3
source "$(dirname "$0")/helpers.sh"

for shared in ON OFF; do
    quietly "$cmake" -S "$example" -B "$work/$shared" -DIMAGEBLEND_SOURCE="$root" \
        -DBUILD_SHARED_LIBS=$shared -DCMAKE_BUILD_TYPE=Debug -DCMAKE_INSTALL_RPATH='$ORIGIN/../lib' \
        -DCMAKE_INSTALL_LIBDIR=lib
    quietly "$cmake" --build "$work/$shared" -j 2
    blends "$work/$shared/blend"
    quietly "$cmake" --install "$work/$shared" --prefix "$work/installed-$shared"
    blends "$work/installed-$shared/bin/blend"
    quietly "$cmake" -S "$example" -B "$work/again-$shared" \
        -DCMAKE_PREFIX_PATH="$work/installed-$shared"
    quietly "$cmake" --build "$work/again-$shared"
    blends "$work/again-$shared/blend"
done

[ -e "$work/installed-ON/lib/libimageblend.so" ] || fail "no shared library was installed"
static=$work/installed-OFF/lib/libimageblend.a
[ ! -e "$work/installed-OFF/lib/libimageblend.so" ] || fail "the static build made a shared library"
symbols=$(nm -g --defined-only "$static" | awk 'NF == 3 { print $3 }' | sort | paste -sd' ')
[ "$symbols" = 'vorn_create_rgb_icon vorn_get_icon_size vorn_imageBlending vorn_verify_icon_pos' ] ||
    fail "the static library defines $symbols"
# A program without shared libraries, from what pkg-config says.
export PKG_CONFIG_PATH=$work/installed-OFF/lib/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs --static imageblend)"
quietly "$CC" -static "$example/blend.c" -o "$work/static" "${flags[@]}"
blends "$work/static"
