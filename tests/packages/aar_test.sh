#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# aar_test.sh CC: packs stand-in libraries, then breaks the package in every way that the checker
# must see. The stand-ins are stubs of this machine's compiler; the one for arm64-v8a is the same
# file with the machine's number of 64-bit Arm in its header. They cannot run on Android.
set -euo pipefail
cc=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export SOURCE_DATE_EPOCH=1700000000
failures=0

fault() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

four='int vorn_get_icon_size(void){return 0;} int vorn_create_rgb_icon(void){return 0;}
int __android_log_print(void); int vorn_verify_icon_pos(void){return __android_log_print();}
int vorn_imageBlending(void){return 0;}'

# library FILE SOURCE OPTION...: a stub of 16 KB pages for x86_64.
library() {
    echo "$2" | "$cc" -shared -nostdlib -fPIC -x c - -L. -Wl,-z,relro -Wl,-z,now \
        -Wl,-z,max-page-size=16384 -Wl,-soname,"$1" -o "$1" "${@:3}"
    set_machine "$1" '\x3e'
}
set_machine() { printf %b "$2\x00" | dd of="$1" bs=1 seek=18 conv=notrunc status=none; }

library liblog.so 'int __android_log_print(void){return 0;}'
library libimageblend.so "$four" -llog
library libimageblend_jni.so 'int vorn_get_icon_size(void); int JNI_OnLoad(void);
int JNI_OnLoad(void){return vorn_get_icon_size();}' -limageblend
mkdir -p libs/arm64-v8a libs/x86_64
for name in libimageblend.so libimageblend_jni.so; do
    cp "$name" libs/x86_64/
    cp "$name" libs/arm64-v8a/
    set_machine "libs/arm64-v8a/$name" '\xb7'
done

make_aar=("$root/scripts/make-aar.sh" --libs libs --ndk 26)
"${make_aar[@]}" whole.aar
find libs -exec touch -d 2001-02-03 {} +
(umask 077 && TZ=Asia/Tokyo "${make_aar[@]}" again.aar)
cmp whole.aar again.aar || fault "two packages of the same libraries differ"

# broken MESSAGE COMMAND: runs the command in the unpacked package and expects the fault's message.
broken() {
    rm -rf tree
    mkdir tree
    (cd tree && python3 -m zipfile -e ../whole.aar . && eval "$2" &&
        python3 -m zipfile -c ../broken.aar ./*)
    if python3 "$root/scripts/check-aar.py" broken.aar 2>message; then
        fault "the checker accepts: $2"
    elif ! grep -qF "$1" message || [ "$(wc -l <message)" -gt 2 ]; then
        fault "after '$2' the checker says $(cat message), not '$1'"
    fi
}

jni=jni/x86_64/libimageblend.so
prefab=prefab/modules/imageblend
broken 'jni/x86_64/libimageblend_jni.so is missing' 'rm jni/x86_64/libimageblend_jni.so'
broken 'jni/x86/libimageblend.so does not belong here' "mkdir jni/x86; cp $jni jni/x86/"
broken 'is built for AArch64' 'cp jni/arm64-v8a/libimageblend_jni.so jni/x86_64/'
broken 'differs from the one in jni/x86_64' "echo >>$prefab/libs/android.x86_64/libimageblend.so"
broken "has stl 'c++_shared'" "sed -i s/none/c++_shared/ $prefab/libs/android.arm64-v8a/abi.json"
broken "has version '0.9'" 'sed -i "s/\"[0-9.]*\", \"dep/\"0.9\", \"dep/" prefab/prefab.json'
broken 'imageblend.h differs' "echo >>$prefab/include/imageblend.h"
broken 'LICENSE is missing' 'rm LICENSE'
broken 'LICENSE differs' 'sed -i s/2026/2025/ LICENSE'
broken 'has package org.other' 'sed -i s/org.imageblend/org.other/ AndroidManifest.xml'
broken "has minSdkVersion ['21']" 'sed -i s/24/21/ AndroidManifest.xml'
broken 'proguard.txt does not keep' 'sed -i s/native/public/ proguard.txt'
broken 'classes.jar holds' 'touch R; jar uf classes.jar R; rm R'

# broken_library MESSAGE SOURCE OPTION...: the same with another libimageblend.so.
broken_library() {
    library libimageblend.so "${@:2}" -llog
    broken "$1" "cp ../libimageblend.so $jni; cp $jni $prefab/libs/android.x86_64/"
}
broken_library 'has segments aligned to 4096' "$four" -Wl,-z,max-page-size=4096
broken_library "'other'" "$four int other(void){return 0;}"
broken_library 'has no GNU_RELRO segment' "$four" -Wl,-z,norelro
broken_library 'has no BIND_NOW flag' "$four" -Wl,-z,lazy
broken_library "has the soname ['libother.so']" "$four" -Wl,-soname,libother.so
library libc++_shared.so 'int cxx(void){return 0;}'
broken_library "needs ['libc++_shared.so']" "$four" -Wl,--no-as-needed -l:libc++_shared.so
library libimageblend.so "${four//__android_log_print/vorn_get_icon_size}"
broken 'does not need liblog.so' "cp ../libimageblend.so $jni; cp $jni $prefab/libs/android.x86_64/"

"$root/scripts/make-aar.sh" --help >message
grep -q ANDROID_NDK_HOME message && grep -q -e '--libs FOLDER' message || fault "no help"
# Without an NDK: one line that names the variable, and no file.
status=0
ANDROID_NDK_HOME='' "$root/scripts/make-aar.sh" none.aar >message 2>&1 || status=$?
[ "$status" -eq 2 ] && [ "$(wc -l <message)" -eq 1 ] && grep -q ANDROID_NDK_HOME message ||
    fault "without an NDK: status $status, $(cat message)"
[ ! -e none.aar ] || fault "a package was written without an NDK"
[ "$failures" -eq 0 ]
