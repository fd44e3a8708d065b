#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# batch_stop_test.sh IMAGEBLEND: batches that are interrupted, stopped, killed and started again.
source "$(dirname "$0")/batch_helpers.sh"

first=cut # the first job's source
# start FOLDER [COMMAND]: in a process group of its own, in which an interrupt is not ignored
start() {
    many "$1"
    sed -i "1s/cut/$first/" "$1.jsonl"
    setsid env --default-signal=INT "${@:2}" "$tool" batch "$1.jsonl" --jobs 2 2>err &
    process=$!
    last="batch $1.jsonl"
    wait_for 20 "$1" '[0-9]*.png'
}
# ends_with STATUS: the process that was started, soon
ends_with() {
    timeout 20 tail -s 0.05 --pid=$process -f /dev/null || kill -9 -- -$process
    wait $process 2>/dev/null
    [ $? -eq "$1" ] || fail "status of a batch"
}
# resume FOLDER: no output is damaged, and the same command makes the missing ones.
resume() {
    local file
    for file in "$1"/*.png; do
        cmp -s "$file" "reference/${file#*/}" || fail "$file is damaged"
    done
    run 0 batch "$1.jsonl" --jobs 2 && says "skipped"
    find "$1" -name '.imageblend*' -delete
    complete "$1"
}

# The jobs at hand are finished, whether a signal comes from a terminal, which reaches the workers
# too, or from timeout(1), which sends it to the group and once more to the command.
finishes() {
    local signal
    for signal in INT TERM HUP; do
        start stopped$signal
        kill -$signal -- -$process
        kill -$signal $process
        ends_with $((128 + $(kill -l $signal)))
        says "interrupted: the same command goes on" && says ", 0 failed"
        no_leftovers
        resume stopped$signal
    done
    # One that is ignored from the start stays ignored.
    start nohup nohup
    kill -HUP -- -$process
    ends_with 0
    complete nohup
}

# A second request ends the jobs at hand.
breaks_off() {
    first=never start late
    kill -TERM -- -$process
    sleep 0.4
    kill -0 $process 2>/dev/null || fail "one signal breaks a job off"
    kill -TERM $process
    ends_with 143
    says "late.jsonl:1: late/0000.png failed: it was broken off" && says "interrupted"
    no_leftovers
}

# Lines that come without an end and are all refused.
refusals() {
    mkfifo endless
    yes '{}' >endless 2>/dev/null &
    (ulimit -f 1000000 && exec setsid env --default-signal=INT "$tool" batch endless 2>err) &
    process=$!
    until_true test -s err
    kill -INT $process
    ends_with 130
    says "interrupted"
}

killed() {
    start killed
    kill -9 $process
    wait $process 2>/dev/null
    while pgrep -f "^$tool batch killed.jsonl" >/dev/null; do sleep 0.02; done
    no_leftovers
    resume killed

    start group
    kill -9 -- -$process
    wait $process 2>/dev/null
    resume group
}

groups reference finishes breaks_off refusals killed
