#!/usr/bin/env bash
# batch_test.sh IMAGEBLEND: job files, broken jobs, interrupted runs and many processes.
# IMAGEBLEND_BATCH_JOBS sets the number of jobs of the larger runs.
source "$(dirname "$0")/helpers.sh"
jobs=${IMAGEBLEND_BATCH_JOBS:-200}

flat white.png 64 48 255 3
rectangle bar.png 64 48 10 10 30 20
vips bandjoin "white.png bar.png" cut.png
flat black.png 96 72 0 3

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
# correct FOLDER: some outputs may be missing
correct() {
    local file
    for file in "$1"/*.png; do
        [ ! -e "$file" ] || cmp -s "$file" "reference/${file#*/}" || fail "$file is damaged"
    done
}
# wait_for COUNT FOLDER: until this many outputs are there
wait_for() {
    for _ in $(seq 600); do
        [ "$(find "$2" -name '[0-9]*.png' | wc -l)" -lt "$1" ] || return 0
        sleep 0.02
    done
    fail "no $1 outputs in $2"
}

lines() {
    cat >jobs.jsonl <<'END'
{"source": "cut.png", "destination": "black.png", "output": "good.png", "at": [50, 40], "zoom": 0.5}
{"source": "cut.png", "destination": "black.png", "output": }

["source"]
{"source": "cut.png", "destination": "black.png", "output": "a.png", "colour": 1}
{"source": "cut.png", "destination": 5, "output": "b.png"}
{"source": "cut.png", "output": "c.png"}
{"source": "cut.png", "destination": "black.png", "output": "d.png", "at": [1, 2.5]}
{"source": "cut.png", "destination": "black.png", "output": "e.png", "zoom": -1}
{"source": "cut.png", "destination": "black.png", "output": "f.png", "soft": "yes"}
{"source": "none.png", "destination": "black.png", "output": "g.png"}
{"source": "cut.png", "destination": "black.png", "output": "h.xyz"}
{"source": "cut.png", "destination": "black.png", "output": "there.png"}
{"source": "cut.png", "destination": "black.png", "output": "./good.png"}
{"source": "cut.png", "destination": "black.png", "output": "i.png", "angle": 1, "angle": 2}
{"source": "white.png", "mask": "bar.png", "soft": true, "destination": "black.png", "output": "last.png", "at": [9, 9]}
END
    truncate -s -1 jobs.jsonl # no line end after the last job
    cp white.png there.png
    run 3 batch jobs.jsonl
    says "jobs.jsonl:2: not JSON: parse error"
    says "jobs.jsonl:4: job: must be a JSON object"
    says "jobs.jsonl:5: colour: no such field"
    says "jobs.jsonl:6: destination: must be a string, not 5"
    says "jobs.jsonl:7: destination: is missing"
    says "jobs.jsonl:8: at: must be two whole numbers"
    says "jobs.jsonl:9: zoom -1: must be"
    says "jobs.jsonl:10: soft: must be true or false"
    says "jobs.jsonl:11: g.png failed: none.png: cannot be read"
    says "jobs.jsonl:12: h.xyz failed: h.xyz: no kind of image file"
    says "jobs.jsonl:14: output: ./good.png is the output of line 1 already"
    says "jobs.jsonl:15: angle: is given twice"
    says "jobs.jsonl:16: warning: last.png: a seam may show"
    says "2 blended, 1 skipped as the output exists, 12 failed"
    cmp -s white.png there.png || fail "an existing output was touched"
    "$tool" blend cut.png black.png single.png --at 50,40 --zoom 0.5 2>err
    cmp -s single.png good.png || fail "a batch blends differently"
    [ "$(find . -name '?.png' | wc -l)" -eq 0 ] || fail "a failed job has an output"

    run 0 batch --overwrite - < <(sed -n 13p jobs.jsonl)
    says "standard input: 1 blended, 0 failed"
    ! cmp -s white.png there.png || fail "the output was not overwritten"
    run 0 batch /dev/null
    run 66 batch none.jsonl && says "none.jsonl: cannot be read"
    run 64 batch jobs.jsonl --jobs 0
    no_leftovers
}

# A job whose process dies does not end the others.
lost_process() {
    mkfifo never.png
    {
        printf '{"source":"never.png","destination":"black.png","output":"lost/never.png"}\n'
        sed 's/"at.*/"zoom":0.5}/' reference.jsonl | sed 's/reference/lost/' | head -n 5
    } >lost.jsonl
    mkdir lost
    "$tool" batch lost.jsonl --jobs 2 2>err &
    wait_for 5 lost
    kill -9 "$(pgrep -P $! | head -n 1)"
    wait $!
    [ $? -eq 3 ] || fail "status after a lost process"
    last="batch lost.jsonl"
    says "lost.jsonl:1: lost/never.png failed: its process was ended by a signal: Killed"
    says "5 blended, 1 failed"
    find lost -name '.imageblend*' -delete # what kill -9 leaves behind
}

# start FOLDER: in a process group of its own, in which an interrupt is not ignored
start() {
    setsid env --default-signal=INT "$tool" batch "$1.jsonl" --jobs 2 2>err &
    process=$!
    last="batch $1.jsonl"
}
resume() {
    correct "$1"
    run 0 batch "$1.jsonl" --jobs 2 && says "skipped"
    find "$1" -name '.imageblend*' -delete
    complete "$1"
}

interrupts() {
    many stopped && many killed && many group
    start stopped
    wait_for 20 stopped
    kill -INT -- -$process # as a terminal does: the command and its workers
    wait $process
    [ $? -eq 130 ] || fail "status of an interrupted batch"
    says "interrupted"
    grep -q ", 0 failed" err || fail "the jobs at hand were not finished"
    no_leftovers
    resume stopped

    start killed
    wait_for 20 killed
    kill -9 $process
    wait $process 2>/dev/null
    while pgrep -f "^$tool batch killed.jsonl" >/dev/null; do sleep 0.02; done
    no_leftovers
    resume killed

    start group
    wait_for 20 group
    kill -9 -- -$process
    wait $process 2>/dev/null
    resume group
}

terminal() {
    command -v script >/dev/null || return
    many seen
    script -qec "'$tool' batch seen.jsonl" /dev/null >screen
    grep -qE '\[#+-*\] [0-9]+/'"$jobs"'  [0-9.]+/s  [0-9]+:[0-9]+ left' screen || fail "no progress bar"
    complete seen
}

# The same file split among machines: here two names behind a stand-in for ssh.
machines() {
    command -v parallel >/dev/null || { echo "GNU parallel is not installed"; return; }
    printf '#!/bin/sh\nwhile [ "$1" != one ] && [ "$1" != two ]; do shift; done\n' >ssh-stand-in
    printf 'echo "$1" >>hosts\nshift\n[ "$1" != -- ] || shift\n' >>ssh-stand-in
    printf 'exec env SHELL=/bin/sh sh -c "$*"\n' >>ssh-stand-in # sshd sets it, CI machines may not
    chmod +x ssh-stand-in
    many shared
    PARALLEL_SSH=$work/ssh-stand-in parallel --will-cite --pipe -N 25 --sshlogin 2/one,2/two \
        --wd "$work" "$tool" batch - <shared.jsonl 2>err || fail "parallel: status $?"
    [ "$(sort -u hosts | tr '\n' ' ')" = "one two " ] || fail "not all machines were used"
    last="parallel"
    complete shared
}

many reference
SECONDS=0
run 0 batch reference.jsonl
says "$jobs blended, 0 failed"
echo "$jobs jobs in $SECONDS s"
many two
run 0 batch two.jsonl --jobs 2
complete two
for group in lines lost_process interrupts terminal machines; do
    $group
done
finish
