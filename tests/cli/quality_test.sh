#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# quality_test.sh BENCH_QUALITY IMAGEBLEND: a few blends beside exact composites. The bounds are wide:
# they are for a rim, a seam or a wrong place, and the benchmark is for the figures.
set -euo pipefail
bench=$(realpath "$1") tool=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

"$bench" "$tool" --scenes jar-bricks --discard --out . \
    --cases wide-4-soft,cutout-premultiplied,turned-hard >table.txt
awk -F, '
    FNR == 1 { next }
    { blends++ }
    $4 != 1 || $5 > 2 || $6 > 2.5 || $7 > 10 || $8 != 0 || $10 ^ 2 > 1 || $11 ^ 2 > 1 {
        print "FAILED: " $0
        failures++
    }
    END {
        if (blends != 3) print "FAILED: " blends " blends instead of 3"
        exit failures > 0 || blends != 3
    }' results.csv
echo "all passed"
