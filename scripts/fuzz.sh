#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds all fuzzers, runs each for SECONDS (60 if not given) from a fixed seed and prints how many
# calls it made. Stops at the first finding, which stays in build-fuzz/findings.
# usage: scripts/fuzz.sh [SECONDS [BUILD_FOLDER]]
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages clang libclang-rt-14-dev cmake make libgtest-dev
seconds=${1:-60}
build=${2:-$root/build-fuzz}
cmake --preset fuzz -S "$root" -B "$build" >/dev/null
cmake --build "$build" -j "$(nproc)" --target fuzzers
mkdir -p "$build/findings"

# fuzz NAME SEEDS MAX_LENGTH: starts from the inputs in fuzz/seeds/SEEDS. Leaks are looked for at the
# end, as a look after each call is slow. A blend that fails because the object is too large keeps its
# buffers, so memory grows.
fuzz() {
    local corpus=$build/corpus/$1 log=$build/$1.log
    mkdir -p "$corpus"
    if ! "$build/fuzz/$1" -seed=1 -max_total_time="$seconds" -max_len="$3" -timeout=60 \
        -detect_leaks=0 -rss_limit_mb=8192 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$1-" \
        "$corpus" "$root/fuzz/seeds/$2" >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        echo "fuzz.sh: $1 found something: $log and $build/findings" >&2
        exit 1
    fi
    awk -v name="$1" -v seconds="$seconds" '/number_of_executed_units/ {
        printf "%-16s %9d calls in %d s\n", name, $2, seconds }' "$log"
}

rm -rf "$build/corpus"
for call in blend cutout verify size; do
    fuzz "${call}_fuzzer" calls 256
done
fuzz bmp_read_fuzzer bmp 4096
fuzz prepare_fuzzer prepare 256
