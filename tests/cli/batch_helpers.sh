# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Sourced by the tests of batches: pictures, job files, and results to compare with.
# IMAGEBLEND_BATCH_JOBS sets the number of jobs of the larger runs.
source "$(dirname "$0")/helpers.sh"
jobs=${IMAGEBLEND_BATCH_JOBS:-200}

flat white.png 64 48 255 3
rectangle bar.png 64 48 10 10 30 20
vips bandjoin "white.png bar.png" cut.png
flat black.png 96 72 0 3
mkfifo never.png # a job that reads it stays at hand

# many FOLDER: a job file whose outputs go there
many() {
    mkdir -p "$1"
    local i
    for ((i = 0; i < jobs; i++)); do
        printf '{"source":"cut.png","destination":"black.png","output":"%s/%04d.png","at":[%d,%d]}\n' \
            "$1" "$i" $((i % 96)) $((i % 72))
    done >"$1.jsonl"
}
# complete FOLDER: all outputs are those of the reference
complete() { diff -rq reference "$1" >differences || fail "$1: $(head -n 3 differences)"; }

reference() {
    many reference
    SECONDS=0
    run 0 batch reference.jsonl && says "$jobs blended, 0 failed, "
    echo "$jobs jobs in $SECONDS s"
}

# until_true COMMAND...: waits for it
until_true() {
    for _ in $(seq 1500); do
        "$@" && return
        sleep 0.02
    done
    fail "still not: $*"
}
has_lines() { [ "$(wc -l <"$1")" -eq "$2" ]; }
