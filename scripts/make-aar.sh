#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Packs imageblend.aar; make-aar.sh --help says how.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
abis=(arm64-v8a x86_64)

fail() {
    echo "make-aar.sh: $*" >&2
    exit 2
}

print_help() {
    cat <<END
usage: scripts/make-aar.sh [--libs FOLDER --ndk MAJOR] [FILE]

Packs the Android archive FILE (out/imageblend.aar if not given) for arm64-v8a and x86_64 and checks
that it is whole.

  --libs FOLDER  take the libraries from FOLDER/arm64-v8a and FOLDER/x86_64 instead of building them
  --ndk MAJOR    the release of the NDK that built them, for instance 26
  --help         print this and exit

Environment:
  ANDROID_NDK_HOME   the folder of an Android NDK, r26 or newer, that builds the libraries
  SOURCE_DATE_EPOCH  every date in the archive, the last commit's time if not set; the same sources
                     and the same NDK give the same bytes

Needs CMake 3.22 and the Debian packages openjdk-17-jdk-headless, python3 and binutils.
END
}

libs='' ndk_major='' output=''
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h) print_help; exit 0 ;;
        --libs) [ $# -ge 2 ] || fail "--libs needs a folder"; libs=$2; shift 2 ;;
        --ndk) [ $# -ge 2 ] || fail "--ndk needs a number"; ndk_major=$2; shift 2 ;;
        -*) fail "unknown option $1 (see make-aar.sh --help)" ;;
        *) output=$1; shift ;;
    esac
done
output=${output:-$root/out/imageblend.aar}
for command in javac jar python3 readelf; do
    command -v "$command" >/dev/null || fail "$command was not found (Debian packages" \
        "openjdk-17-jdk-headless, python3, binutils)"
done

# The major release of the NDK; ends the script when it is missing or too old.
check_ndk() {
    local folder=${ANDROID_NDK_HOME:-} revision
    [ -f "$folder/build/cmake/android.toolchain.cmake" ] ||
        fail "ANDROID_NDK_HOME is \"$folder\", must name the folder of an Android NDK, r26 or newer"
    revision=$(sed -n 's/^Pkg.Revision *= *//p' "$folder/source.properties")
    ndk_major=${revision%%.*}
    # Older compilers ignore SOURCE_DATE_EPOCH.
    [ "${ndk_major:-0}" -ge 26 ] || fail "the NDK in $folder is r${ndk_major:-?}, must be r26 or newer"
}

build_libs() {
    local abi preset
    for abi in "${abis[@]}"; do
        preset=android-${abi%-v8a}
        (cd "$root" && cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)")
        mkdir -p "$libs/$abi"
        cp "$root/build-$preset"/libimageblend{,_jni}.so "$libs/$abi/"
    done
}

pack_classes() {
    mkdir "$work/classes"
    javac --release 8 -Xlint:-options -d "$work/classes" \
        "$root/android/java/org/imageblend/ImageBlend.java"
    jar --create --no-manifest --date="$date" --file "$stage/classes.jar" \
        -C "$work/classes" org/imageblend/ImageBlend.class
}

# prefab/: how a native build finds the header and the library.
write_prefab() {
    local module=$stage/prefab/modules/imageblend abi
    mkdir -p "$module/include"
    cp "$root/include/imageblend.h" "$module/include/"
    printf '{ "schema_version": 2, "name": "imageblend", "version": "%s", "dependencies": [] }\n' \
        "$version" >"$stage/prefab/prefab.json"
    echo '{ "export_libraries": [], "library_name": "libimageblend" }' >"$module/module.json"
    for abi in "${abis[@]}"; do
        mkdir -p "$module/libs/android.$abi"
        cp "$libs/$abi/libimageblend.so" "$module/libs/android.$abi/"
        printf '{ "abi": "%s", "api": 24, "ndk": %d, "stl": "none", "static": false }\n' \
            "$abi" "$ndk_major" >"$module/libs/android.$abi/abi.json"
    done
}

if [ -z "$libs" ]; then
    check_ndk
elif [ -z "$ndk_major" ]; then
    fail "--libs needs --ndk with the release that built the libraries"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
stage=$work/aar
if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
    SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct) ||
        fail "without a git history SOURCE_DATE_EPOCH must be set"
fi
export SOURCE_DATE_EPOCH
date=$(date --utc --date="@$SOURCE_DATE_EPOCH" +%Y-%m-%dT%H:%M:%SZ)
version=$(sed -n 's/^#define IMAGEBLEND_VERSION_[A-Z]* //p' "$root/include/imageblend.h" |
    paste -sd.)

if [ -z "$libs" ]; then
    libs=$work/libs
    build_libs
fi
for abi in "${abis[@]}"; do
    for name in libimageblend.so libimageblend_jni.so; do
        [ -f "$libs/$abi/$name" ] || fail "$libs/$abi/$name was not found"
        install -D -m 644 "$libs/$abi/$name" "$stage/jni/$abi/$name"
    done
done
cp "$root"/android/aar/* "$root/LICENSE" "$stage/"
: >"$stage/R.txt"
pack_classes
write_prefab
mapfile -t files < <(cd "$stage" && find . -type f -printf '%P\n' | LC_ALL=C sort)
mkdir -p "$(dirname "$output")"
(cd "$stage" && jar --create --no-manifest --date="$date" --file "$work/imageblend.aar" "${files[@]}")
python3 "$root/scripts/check-aar.py" "$work/imageblend.aar"
cp "$work/imageblend.aar" "$output"
echo "$output"
