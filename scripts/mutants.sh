#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# mutants.sh [-n COUNT] [-s SEED] [-o PATTERN] [-t SECONDS] [FOLDER...]: puts faults into a copy of
# the last commit, one at a time, and tells which of them the tests do not notice. COUNT faults
# (default: 40) are drawn by SEED (default: 1) among those that scripts/mutants.tsv finds in the
# FOLDERs (default: src tools). With -o, only those of them are tried whose line, as it is printed,
# matches PATTERN: the survivors again, after a test was mended. A fault with which a test lasts
# longer than SECONDS (default: 120) is noticed, too.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
count=40 seed=1 only=. seconds=120
while getopts n:s:o:t: option; do
    case $option in
        n) count=$OPTARG ;;
        s) seed=$OPTARG ;;
        o) only=$OPTARG ;;
        t) seconds=$OPTARG ;;
        *) sed -n '3,8s/^# //p' "$0" >&2 && exit 64 ;;
    esac
done
shift $((OPTIND - 1))
[ $# -gt 0 ] || set -- src tools
need_packages "${build_packages[@]}" "${test_packages[@]}"

work=$root/build-mutants/${1//\//-}
rm -rf "$work"
mkdir -p "$work/tree"
git -C "$root" archive HEAD | tar -x -C "$work/tree"
export IMAGEBLEND_TEST_CALLS=${IMAGEBLEND_TEST_CALLS:-60} IMAGEBLEND_SIGNAL_RUNS=4
export IMAGEBLEND_BATCH_JOBS=60 IMAGEBLEND_STOP_AT_FAILURE=1
# The tools are built without optimization, in a third of the time; the library has options of its
# own.
optimization=()
[[ " $*" == *" src"* ]] || optimization=(-DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG)
cmake -S "$work/tree" -B "$work/build" -DCMAKE_BUILD_TYPE=Release "${optimization[@]}" \
    -DIMAGEBLEND_BUILD_JAVA=OFF -DIMAGEBLEND_BUILD_BENCH=OFF >"$work/log"

# cover FILE: which tests run for a fault in it, those first that are likely to notice.
cover() {
    case $1 in
        src) tests=(internal_tests boundary_tests prepare/prepare_tests bmp/bmp_tests) ;;
        src/prepare*) tests=(prepare/prepare_tests) ;;
        src/bmp*) tests=(bmp/bmp_tests) ;;
        src/*) tests=(internal_tests boundary_tests) ;;
        tools/batch/stop*) tests=(batch_stop) ;;
        tools/batch*) tests=(batch batch_stop) ;;
        tools/commands/job*) tests=(batch cli) ;;
        tools/explain* | tools/commands/explain*) tests=(explain) ;;
        tools/*/bare_*) tests=(as_is explain) ;;
        tools/commands/small_* | tools/commands/lack_*) tests=(files) ;;
        tools/main* | tools/commands* | tools/*/layer* | tools/*/clean_object* | tools/*/placement*)
            tests=(cli as_is explain files batch) ;;
        *) tests=(files cli as_is explain batch) ;;
    esac
}
build() { timeout 600 cmake --build "$work/build" -j "$(nproc)" --target "$1" >>"$work/log" 2>&1; }
# end_leftovers: a faulty command may run on after its test.
end_leftovers() { pgrep -f "^$work/build/imageblend( |\$)" | xargs -r kill -9 2>/dev/null || true; }
# try FILE: 0 when its tests pass, 1 when one fails, 2 when it cannot be built
try() {
    local test target command status=0
    cover "$1"
    for test in "${tests[@]}"; do
        case $1 in
            src*) target=${test##*/} command=("$work/build/tests/$test" --gtest_fail_fast) ;;
            *) target=imageblend_tool
                command=(bash "$work/tree/tests/cli/${test}_test.sh" "$work/build/imageblend") ;;
        esac
        build "$target" || return 2
        timeout -k 5 "$seconds" "${command[@]}" >>"$work/log" 2>&1 || status=1
        end_leftovers
        [ $status -eq 0 ] || return 1
    done
}

for folder in "$@"; do
    try "$folder" ||
        { tail -n 30 "$work/log" >&2 && echo "$folder fails without a fault" >&2 && exit 1; }
done

killed=0 survivors=()
while IFS=$'\t' read -r -u 3 file number line; do
    what="$file:$number: ${line#"${line%%[! ]*}"}"
    [[ $what =~ $only ]] || continue
    cp "$work/tree/$file" "$work/original"
    fault=$line perl -i -pe "\$_ = \"\$ENV{fault}\n\" if \$. == $number" "$work/tree/$file"
    status=0
    try "$file" || status=$?
    case $status in
        0) survivors+=("$what") && echo "survived  $what" ;;
        1) killed=$((killed + 1)) && echo "killed    $what" ;;
        2) echo "no build  $what" ;;
    esac
    cp "$work/original" "$work/tree/$file"
done 3< <(python3 "$root/scripts/mutants.py" "$root/scripts/mutants.tsv" "$work/tree" "$work/build" \
    "$seed" "$count" "$@")

echo "$killed killed, ${#survivors[@]} survived"
[ ${#survivors[@]} -eq 0 ] || printf '%s\n' "${survivors[@]}"
