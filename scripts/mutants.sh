#!/usr/bin/env bash
# mutants.sh [-n COUNT] [-s SEED] [-t SECONDS] [FOLDER...]: puts faults into a copy of the last
# commit, one at a time, and tells which of them the tests do not notice. COUNT faults (default: 40)
# are drawn by SEED (default: 1) among those that scripts/mutants.tsv finds in the FOLDERs (default:
# src tools). A fault with which the tests last longer than SECONDS (default: 120) is noticed, too.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
count=40 seed=1 seconds=120
while getopts n:s:t: option; do
    case $option in
        n) count=$OPTARG ;;
        s) seed=$OPTARG ;;
        t) seconds=$OPTARG ;;
        *) sed -n '2,5s/^# //p' "$0" >&2 && exit 64 ;;
    esac
done
shift $((OPTIND - 1))
[ $# -gt 0 ] || set -- src tools
need_packages "${build_packages[@]}" "${test_packages[@]}"

work=$root/build-mutants/${1//\//-}
rm -rf "$work"
mkdir -p "$work/tree"
git -C "$root" archive HEAD | tar -x -C "$work/tree"
export IMAGEBLEND_SIGNAL_RUNS=6 IMAGEBLEND_STOP_AT_FAILURE=1
cmake -S "$work/tree" -B "$work/build" -DCMAKE_BUILD_TYPE=Release -DIMAGEBLEND_BUILD_JAVA=OFF \
    -DIMAGEBLEND_BUILD_BENCH=OFF >"$work/log"

# cover FILE: what is built and which tests run for a fault in it.
cover() {
    tests=(--test-dir "$work/build/tests")
    case $1 in
        tools/batch*) tests+=(-R '^cli_(batch|batch_stop)$') ;;
        tools/explain*) tests+=(-R '^cli_explain$') ;;
        tools*) tests+=(-R '^cli_' -E 'machines|batch_stop') ;;
        src/prepare*) tests=(--test-dir "$work/build/tests/prepare") ;;
        src/bmp*) tests=(--test-dir "$work/build/tests/bmp") ;;
        src/*) tests+=(-E '^cli|^readme|^elf|^hardening|NOT_BUILT') ;;
        src) tests+=(-E '^cli|^readme|^elf|^hardening') ;;
    esac
    case $1 in
        tools*) targets=(imageblend_tool) ;;
        src/prepare*) targets=(prepare_tests) ;;
        src/bmp*) targets=(bmp_tests) ;;
        src/*) targets=(internal_tests boundary_tests) ;;
        src) targets=(internal_tests boundary_tests prepare_tests bmp_tests) ;;
    esac
}
builds() { timeout 600 cmake --build "$work/build" -j "$(nproc)" --target "${targets[@]}" >>"$work/log" 2>&1; }
passes() {
    timeout "$seconds" ctest "${tests[@]}" --stop-on-failure -j "$(nproc)" >>"$work/log" 2>&1
}

for folder in "$@"; do
    cover "$folder"
    builds && passes || { tail -n 30 "$work/log" >&2 && echo "$folder fails without a fault" >&2 && exit 1; }
done

killed=0 survivors=()
while IFS=$'\t' read -r -u 3 file number line; do
    cover "$file"
    cp "$work/tree/$file" "$work/original"
    fault=$line perl -i -pe "\$_ = \"\$ENV{fault}\n\" if \$. == $number" "$work/tree/$file"
    what="$file:$number: ${line#"${line%%[! ]*}"}"
    if ! builds; then
        echo "no build  $what"
    elif passes; then
        survivors+=("$what")
        echo "survived  $what"
    else
        killed=$((killed + 1))
        echo "killed    $what"
    fi
    cp "$work/original" "$work/tree/$file"
done 3< <(python3 "$root/scripts/mutants.py" "$root/scripts/mutants.tsv" "$work/tree" "$seed" \
    "$count" "$@")

echo "$killed killed, ${#survivors[@]} survived"
[ ${#survivors[@]} -eq 0 ] || printf '%s\n' "${survivors[@]}"
