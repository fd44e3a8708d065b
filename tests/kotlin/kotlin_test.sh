#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# kotlin_test.sh KOTLINC JAVAC JAVA JAR LIBRARIES: compiles the example and runs it.
set -euo pipefail
kotlinc=$1 javac=$2 java=$3 jar=$4 libraries=$5
tests=$(cd "$(dirname "$0")" && pwd)
root=$tests/../..
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$javac" --release 8 -Xlint:-options -d "$work/android" "$tests"/android/graphics/*.java
"$kotlinc" -cp "$work/android:$jar" -include-runtime -d "$work/sticker.jar" \
    "$root/examples/android/Sticker.kt" "$tests/StickerTest.kt"
"$java" -Djava.awt.headless=true -Djava.library.path="$libraries" \
    -cp "$work/sticker.jar:$work/android:$jar" StickerTestKt
# The document shows the example as it is.
document=$(sed -n '/^import android.graphics.Bitmap$/,/^```$/p' "$root/docs/android.md" | sed '$d')
diff <(echo "$document") <(tail -n +2 "$root/examples/android/Sticker.kt")
