#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what is missing, builds, measures, prints one table and draws docs/bench.svg.
# Usage: scripts/bench.sh [--quick]
#   --quick  a few short rounds, for a first look; the drawing is left as it is
# The folder of the build is build/, or $BUILD_DIR.
set -euo pipefail
source "$(dirname "$0")/packages.sh"

rounds=15 seconds=0.1 quick=false
for option in "$@"; do
    case $option in
        --quick) quick=true rounds=3 seconds=0.01 ;;
        *) echo "bench.sh: unknown option $option (known: --quick)" >&2; exit 2 ;;
    esac
done

need_packages "${build_packages[@]}" libbenchmark-dev libopencv-dev libhalide14-0-dev gnuplot-nox \
    enblend
build=${BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DIMAGEBLEND_BUILD_BENCH=ON
programs=(bench_rows bench_pyramid bench_calls bench_prepare)
cmake --build "$build" -j "$(nproc)" --target "${programs[@]}" bench_fresh bench_load \
    bench_memory bench_table

unset IMAGEBLEND_LOG
results=$build/bench/results
mkdir -p "$results"
files=()
for program in "${programs[@]}"; do
    echo "running $program"
    # The rounds of all benchmarks of a program are mixed, so that what they are compared with
    # meets the same moods of the machine.
    "$build/bench/$program" --benchmark_repetitions=$rounds --benchmark_min_time=$seconds \
        --benchmark_enable_random_interleaving=true --benchmark_out_format=json \
        --benchmark_out="$results/$program.json" >"$results/$program.log" 2>&1 ||
        { cat "$results/$program.log" >&2; exit 1; }
    files+=("$results/$program.json")
done
echo "running bench_fresh"
"$build/bench/bench_fresh" "$($quick && echo 3 || echo 21)" >"$results/bench_fresh.json"
files+=("$results/bench_fresh.json")
echo "running bench_load"
"$build/bench/bench_load" "$($quick && echo 31 || echo 151)" >"$results/bench_load.json"
files+=("$results/bench_load.json")
echo "running bench_memory"
if "$build/bench/bench_memory" >"$results/bench_memory.json"; then
    files+=("$results/bench_memory.json")
fi

rm -f "$results/batch.txt" "$results/quality.txt"
if cmake --build "$build" -j "$(nproc)" --target imageblend_tool >"$results/tool.log" 2>&1; then
    # Throughput of the command line: the same small job over and over, in one and in two processes.
    echo "running batch"
    batch=$(mktemp -d)
    trap 'rm -r "$batch"' EXIT
    for i in $(seq 1 "$($quick && echo 10 || echo 60)"); do
        printf '{"source": "%s/vase.jpg", "mask": "%s/vase-mask.png", "destination": "%s/dunes.jpg", "output": "%s/%d.jpg", "at": [640, 535], "zoom": 0.75}\n' \
            "$root/examples" "$root/examples" "$root/examples" "$batch" "$i"
    done >"$batch/jobs.jsonl"
    for jobs in 1 2; do
        "$build/imageblend" batch "$batch/jobs.jsonl" --overwrite --jobs $jobs 2>&1 | tail -n 1 |
            sed "s/^.*jobs.jsonl/batch of 1280x853 pictures, --jobs $jobs/"
    done >"$results/batch.txt"

    # What comes out of it, on scenes that it was not tuned on.
    echo "running bench_quality"
    scenes=(); ! $quick || scenes=(--scenes lamp-dark_wall)
    cmake --build "$build" -j "$(nproc)" --target bench_quality
    "$build/bench/bench_quality" "$build/imageblend" --set 2 --peers --discard \
        "${scenes[@]}" --out "$results/quality" >"$results/quality.txt"
fi

"$build/bench/bench_table" --plot "$results/plot.dat" "${files[@]}" | tee "$results/table.txt"
[ ! -e "$results/batch.txt" ] || { echo; echo "Command line"; sed 's/^/  /' "$results/batch.txt"; }
if [ -e "$results/quality.txt" ]; then
    echo
    echo "Quality, mean differences in CIELAB (each case: $results/quality.txt)"
    sed -n '/^All cases/,$p' "$results/quality.txt"
fi
if ! $quick && ! grep -q nan "$results/plot.dat"; then
    gnuplot -e "data='$results/plot.dat'; picture='$root/docs/bench.svg'" "$root/bench/plot.gp"
    echo "drawing: $root/docs/bench.svg"
fi
