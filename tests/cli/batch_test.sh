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

reference() {
    many reference
    SECONDS=0
    run 0 batch reference.jsonl && says "$jobs blended, 0 failed"
    echo "$jobs jobs in $SECONDS s"
}

# Jobs and what is said of them; @ stands for a source and a destination.
lines() {
    cat >table <<'END'
{@, "output": "good.png", "at": [50, 40], "zoom": 0.5}
{@, "output": } => not JSON: parse error

["source"] => job: must be a JSON object
{@, "output": "a.png", "colour": 1} => colour: no such field
{"source": "cut.png", "destination": 5, "output": "b.png"} => destination: must be a string, not 5
{"source": "cut.png", "output": "c.png"} => destination: is missing
{@, "output": "d.png", "at": [1, 2.5]} => at: must be two whole numbers
{@, "output": "e.png", "zoom": -1} => zoom -1: must be
{@, "output": "f.png", "soft": "yes"} => soft: must be true or false
{@, "source": "none.png", "output": "g.png"} => source: is given twice
{"source": "none.png", "destination": "black.png", "output": "h.png"} => h.png failed: none.png:
{@, "output": "i.xyz"} => i.xyz failed: i.xyz: no kind of image file
{@, "output": "there.png"}
{@, "output": "./good.png"} => output: ./good.png is the output of line 1 already
{@, "mask": "bar.png", "soft": true, "output": "last.png", "at": [9, 9]} => warning: last.png: a seam
END
    sed 's/ => .*//; s/@/"source": "cut.png", "destination": "black.png"/' table >jobs.jsonl
    truncate -s -1 jobs.jsonl # no line end after the last job
    cp white.png there.png
    run 3 batch jobs.jsonl
    while read -r message; do
        says "$message"
    done < <(grep -n ' => ' table | sed 's/^\([0-9]*\):.* => /jobs.jsonl:\1: /')
    says "2 blended, 1 skipped as the output exists, 12 failed"
    cmp -s white.png there.png || fail "an existing output was touched"
    "$tool" blend cut.png black.png single.png --at 50,40 --zoom 0.5 2>err
    cmp -s single.png good.png || fail "a batch blends differently"
    [ "$(find . -name '?.png' | wc -l)" -eq 0 ] || fail "a failed job has an output"
    no_leftovers

    run 0 batch --overwrite - < <(sed -n 14p jobs.jsonl)
    says "standard input: 1 blended, 0 failed"
    ! cmp -s white.png there.png || fail "the output was not overwritten"
    run 0 batch /dev/null
    run 66 batch none.jsonl && says "none.jsonl: cannot be read"
    run 64 batch jobs.jsonl --jobs 0
}

# A job whose process dies does not end the others.
lost_process() {
    mkfifo never.png
    {
        printf '{"source":"never.png","destination":"black.png","output":"lost/never.png"}\n'
        sed 's/"at.*/"zoom":0.5}/; s/reference/lost/; 5q' reference.jsonl
    } >lost.jsonl
    mkdir lost
    "$tool" batch lost.jsonl --jobs 2 2>err &
    wait_for 5 lost '[0-9]*.png'
    kill -9 "$(pgrep -P $! | head -n 1)"
    wait $!
    [ $? -eq 3 ] || fail "status after a lost process"
    says "lost.jsonl:1: lost/never.png failed: its process was ended by a signal: Killed"
    says "5 blended, 1 failed"
    find lost -name '.imageblend*' -delete # what kill -9 leaves behind
}

# start FOLDER: in a process group of its own, in which an interrupt is not ignored
start() {
    many "$1"
    setsid env --default-signal=INT "$tool" batch "$1.jsonl" --jobs 2 2>err &
    process=$!
    last="batch $1.jsonl"
    wait_for 20 "$1" '[0-9]*.png'
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

interrupts() {
    start stopped
    kill -INT -- -$process # as a terminal does: the command and its workers
    wait $process
    [ $? -eq 130 ] || fail "status of an interrupted batch"
    says "interrupted" && says ", 0 failed" # the jobs at hand were finished
    no_leftovers
    resume stopped

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

terminal() {
    command -v script >/dev/null || return
    many seen
    script -qec "'$tool' batch seen.jsonl" /dev/null >screen
    grep -qE '\[#+-*\] [0-9]+/'"$jobs"'  [0-9.]+/s  [0-9]+:[0-9]+ left' screen || fail "no progress bar"
    complete seen
}

# The same file split among machines by GNU parallel: two names behind a stand-in for ssh, which
# runs the command here.
machines() {
    command -v parallel >/dev/null || { echo "GNU parallel is not installed"; return; }
    cat >ssh <<'END'
#!/bin/sh
while [ "$1" != one ] && [ "$1" != two ]; do shift; done
echo "$1" >>hosts
shift
[ "$1" != -- ] || shift
exec sh -c "$*"
END
    chmod +x ssh
    many shared
    PARALLEL_SSH=$work/ssh parallel --will-cite --pipe -N 25 --sshlogin 2/one,2/two --wd "$work" \
        "$tool" batch - <shared.jsonl 2>err || fail "status $?"
    [ "$(sort -u hosts | xargs)" = "one two" ] || fail "not all machines were used"
    complete shared
}

groups reference lines lost_process interrupts terminal machines
