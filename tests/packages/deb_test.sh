#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# deb_test.sh BUILD CPACK CC: makes the Debian packages, installs them into a folder as dpkg does, and
# runs what they bring. What they depend on comes from this machine.
set -euo pipefail
build=$1 cpack=$2
export CC=$3
source "$(dirname "$0")/helpers.sh"

(cd "$build" && quietly "$cpack" -G DEB -B "$work/packages")
system=$work/system
mkdir -p "$system/var/lib/dpkg/"{info,updates}
: >"$system/var/lib/dpkg/status"
: >"$system/var/lib/dpkg/available"
# The library's script renews this machine's cache of libraries, which has nothing to do with it.
mkdir "$work/bin"
ln -s "$(type -P true)" "$work/bin/ldconfig"
PATH=$work/bin:$PATH quietly dpkg --root="$system" --log=/dev/null --force-not-root \
    --force-script-chrootless --force-depends --force-bad-path -i "$work"/packages/*.deb
for package in libimageblend libimageblend-dev imageblend python3-imageblend; do
    dpkg-query --admindir="$system/var/lib/dpkg" -W -f='${Status}' "$package" 2>&1 |
        grep -qx 'install ok installed' || fail "$package was not installed"
    cmp "$root/LICENSE" "$system/usr/share/doc/$package/LICENSE"
done
depends=$(dpkg-query --admindir="$system/var/lib/dpkg" -W -f='${Depends}' imageblend)
[[ $depends == *libvips* ]] || fail "the command line depends on $depends"

libraries=$(dirname "$(find "$system" -name libimageblend.so)")
quietly "$CC" "$example/blend.c" -o "$work/blend" -I"$system/usr/include" -L"$libraries" -limageblend
blends env LD_LIBRARY_PATH="$libraries" "$work/blend"
quietly "$system/usr/bin/imageblend" blend "$root/examples/vase.jpg" "$root/examples/dunes.jpg" \
    "$work/blended.jpg" --mask "$root/examples/vase-mask.png" --at 640,535 --zoom 0.75
modules=$system/usr/lib/python3/dist-packages
[ -e "$modules/imageblend.py" ] && [ -e "$modules/libimageblend_full.so" ] || fail "no Python module"
[ -s "$work/blended.jpg" ] || fail "the installed command line wrote nothing"
