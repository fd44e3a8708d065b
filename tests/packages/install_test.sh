#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# install_test.sh BUILD CMAKE CC: installs a build, moves it, and builds the example program against
# its CMake package, its pkg-config file and by hand.
set -euo pipefail
build=$1 cmake=$2
export CC=$3
source "$(dirname "$0")/helpers.sh"

DESTDIR='' quietly "$cmake" --install "$build" --prefix "$work/first"
mv "$work/first" "$work/moved here"
prefix="$work/moved here"
library=$(find "$prefix" -name 'libimageblend.so')
[ -n "$library" ] || fail "no library was installed"
libraries=$(dirname "$library")
strays=$(find "$prefix" -name 'lib*' ! -name 'libimageblend*')
[ "${strays:-$prefix/lib}" = "$prefix/lib" ] || fail "foreign names were installed: $strays"
for licence in "$prefix"/share/doc/*; do
    cmp "$root/LICENSE" "$licence/LICENSE"
done
# The jar's times do not tell when it was packed.
jar=$(find "$prefix" -name imageblend.jar)
if [ -n "$jar" ]; then
    listing=$("$cmake" -E tar tvf "$jar")
    grep -q META-INF/LICENSE <<<"$listing" || fail "the jar has no licence: $listing"
    ! grep -v ' 1980 ' <<<"$listing" || fail "the jar has other times: $listing"
fi

quietly "$cmake" -S "$example" -B "$work/found" -DCMAKE_PREFIX_PATH="$prefix"
quietly "$cmake" --build "$work/found"
blends "$work/found/blend"
version=$(sed -n 's/^#define IMAGEBLEND_VERSION_[A-Z]* //p' "$prefix/include/imageblend.h" |
    paste -sd.)
mkdir "$work/older"
printf 'cmake_minimum_required(VERSION 3.22)\nproject(older LANGUAGES C)
find_package(imageblend %s.0 CONFIG REQUIRED)\n' $((${version%%.*} - 1)) >"$work/older/CMakeLists.txt"
"$cmake" -S "$work/older" -B "$work/older" -DCMAKE_PREFIX_PATH="$prefix" >"$log" 2>&1 &&
    fail "version $version passes for the major one before it"

export PKG_CONFIG_PATH=$libraries/pkgconfig
[ "$(pkg-config --modversion imageblend)" = "$version" ] || fail "pkg-config gives another version"
# pkg-config escapes the blank in the folder's name for the shell.
eval "quietly $CC $example/blend.c -o $work/configured $(pkg-config --cflags --libs imageblend)"
blends env LD_LIBRARY_PATH="$libraries" "$work/configured"
quietly "$CC" -std=c99 -Wall -Wextra -Werror "$example/blend.c" -o "$work/by-hand" \
    -I"$prefix/include" -L"$libraries" -limageblend -Wl,-rpath,"$libraries"
blends "$work/by-hand"

# The preparation is a static library on top, in the same packages.
if [ -e "$libraries/libimageblend_prepare.a" ]; then
    mkdir "$work/prepare"
    printf '#include <imageblend_prepare.h>\nint main(void) { return imageblend_paste(0, 0, 0) != -1; }\n' \
        >"$work/prepare/main.c"
    printf 'cmake_minimum_required(VERSION 3.22)\nproject(prepare LANGUAGES C)
find_package(imageblend CONFIG REQUIRED)\nadd_executable(main main.c)
target_link_libraries(main PRIVATE imageblend::imageblend_prepare)\n' >"$work/prepare/CMakeLists.txt"
    quietly "$cmake" -S "$work/prepare" -B "$work/prepare" -DCMAKE_PREFIX_PATH="$prefix"
    quietly "$cmake" --build "$work/prepare"
    quietly "$work/prepare/main"
    eval "quietly $CC $work/prepare/main.c -o $work/prepared \
        $(pkg-config --cflags --libs imageblend_prepare)"
    quietly env LD_LIBRARY_PATH="$libraries" "$work/prepared"
fi

# The Python module and its library stand together.
module=$(find "$prefix" -name imageblend.py)
if [ -n "$module" ] && /usr/bin/python3 -c 'import numpy' 2>/dev/null; then
    quietly env -u IMAGEBLEND_LIBRARY PYTHONPATH="${module%/*}" /usr/bin/python3 -c 'import imageblend'
fi

# What was not built is not installed.
quietly "$cmake" -S "$root" -B "$work/subset" -DCMAKE_BUILD_TYPE=Debug
quietly "$cmake" --build "$work/subset" --target imageblend -j 2
quietly "$cmake" --install "$work/subset" --prefix "$work/part"
[ -n "$(find "$work/part" -name libimageblend.so)" ] || fail "the library alone was not installed"
[ -z "$(find "$work/part" -name 'imageblend' -type f -perm -u+x)" ] || fail "a program came from nowhere"
[ -z "$(find "$work/part" -name 'imageblend.py')" ] || fail "the Python module came from nowhere"
