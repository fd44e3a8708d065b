#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# batch_stop_test.sh IMAGEBLEND: batches that are interrupted, stopped, killed and started again.
source "$(dirname "$0")/batch_helpers.sh"

first=cut # the first job's source
# start FOLDER [COMMAND]: in a process group of its own, in which an interrupt is not ignored. The jobs
# come through a pipe that stays open until this test closes it, so that no batch is at its end
# before the signal comes, however busy the machine is.
start() {
    many "$1"
    sed -i "1s/cut/$first/" "$1.jsonl"
    mkfifo "$1.pipe"
    exec 7<>"$1.pipe"
    setsid env --default-signal=INT "${@:2}" "$tool" batch "$1.pipe" --jobs 2 2>err 7>&- &
    process=$!
    last="batch $1.pipe"
    cat "$1.jsonl" >&7
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
    exec 7>&-
    ends_with 0
    complete nohup
}

# A second request ends the jobs at hand; what comes within a quarter of a second is the first again.
breaks_off() {
    local sent
    first=never start late
    sent=${EPOCHREALTIME/./}
    kill -TERM -- -$process
    sleep 0.05
    kill -TERM $process
    sent=$((${EPOCHREALTIME/./} - sent))
    sleep 0.4
    [ $sent -ge 200000 ] || ! grep -q 'broken off' err || fail "one request breaks a job off"
    kill -TERM $process
    ends_with 143
    says "late.pipe:1: late/0000.png failed: it was broken off" && says "interrupted"
    no_leftovers
}

# A batch that waits for lines.
idle() {
    start idle
    wait_for "$jobs" idle '[0-9]*.png'
    sleep 0.1 # for the last answer
    kill -INT $process
    ends_with 130
    says "$jobs blended, 0 failed" && says "interrupted"
    complete idle
}

# Lines that come without an end and are all refused.
refusals() {
    mkfifo endless
    yes '{}' >endless 2>/dev/null &
    rm err # that of another batch would be taken for a sign of this one
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
    while pgrep -f "^$tool batch killed.pipe" >/dev/null; do sleep 0.02; done
    no_leftovers
    resume killed

    start group
    kill -9 -- -$process
    wait $process 2>/dev/null
    resume group
}

groups reference finishes breaks_off idle refusals killed
