#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# batch_test.sh IMAGEBLEND: job files, broken jobs, lost processes, the report and the bar.
source "$(dirname "$0")/batch_helpers.sh"

# Jobs and what is said of them; @ stands for a source and a destination.
lines() {
    cat >table <<'END'
{@, "output": "good.png", "at": [50, 40], "zoom": 0.5}
{@, "output": } => not JSON: parse error

["source"] => job: must be a JSON object
{@, "output": "a.png", "colour": 1} => colour: no such field
{"source": "cut.png", "destination": 5, "output": "b.png"} => destination: must be a string, not 5
{"source": "cut.png", "output": "c.png"} => destination: is missing
{@, "output": "c\u0000.png"} => output: holds a zero character
{@, "output": ""} => output: must not be empty
{"source": "-", "destination": "black.png", "output": "c.png"} => source: standard streams hold no pictures
{@, "output": ".png[compression=1]"} => output: standard streams hold no pictures
{@, "output": "d.png", "at": [1, 2.5]} => at: must be two whole numbers
{@, "output": "d.png", "at": [1, 1000000001]} => at: 1000000001: must be a whole number of pixels
{@, "output": "d.png", "at": [-1000000001, 1]} => at: -1000000001: must be a whole number of pixels
{@, "output": "d.png", "at": [1]} => at: must be two whole numbers
{@, "output": "e.png", "zoom": -1} => zoom -1: must be
{@, "output": "f.png", "soft": "yes"} => soft: must be true or false
{@, "source": "none.png", "output": "g.png"} => source: is given twice
{"source": "none.png", "destination": "black.png", "output": "h.png"} => h.png failed: none.png:
{@, "output": "i.xyz"} => i.xyz failed: i.xyz: no kind of image file
{@, "output": "there.png"}
{@, "output": "./good.png"} => output: ./good.png is the output of line 1 already
{@, "output": "same/good.png[compression=1]"} => output: same/good.png[compression=1] is the output of line 1 already
{@, "output": "link.png"} => output: link.png is the output of line 1 already
{@, "output": "none/good.png"} => none/good.png failed: none/good.png: cannot be written
{@, "mask": "bar.png", "soft": true, "as_is": true, "output": "last.png", "at": [9, 9]} => warning: last.png: a seam
END
    sed 's/ => .*//; s/@/"source": "cut.png", "destination": "black.png"/' table >jobs.jsonl
    truncate -s -1 jobs.jsonl # no line end after the last job
    cp white.png there.png
    ln -s . same && ln -s same/good.png link.png
    run 3 batch jobs.jsonl --report report.jsonl
    while read -r message; do
        says "$message"
    done < <(grep -n ' => ' table | sed 's/^\([0-9]*\):.* => /jobs.jsonl:\1: /')
    says "2 blended, 1 skipped as the output exists, 22 failed, 2 warnings in"
    cmp -s white.png there.png || fail "an existing output was touched"
    "$tool" blend cut.png black.png single.png --at 50,40 --zoom 0.5 2>err
    cmp -s single.png good.png || fail "a batch blends differently"
    [ "$(find . -name '?.png' | wc -l)" -eq 0 ] || fail "a failed job has an output"
    no_leftovers

    grep -n there.png jobs.jsonl | sed 's/^[0-9]*://' >there.jsonl
    run 0 batch --overwrite - <there.jsonl
    says "standard input: 1 blended, 0 failed"
    ! cmp -s white.png there.png || fail "the output was not overwritten"
    run 0 batch /dev/null
    grep -qx 'imageblend: /dev/null: 0 blended, 0 failed, 0 warnings in 0.0 s' err || fail "summary of no job"
    run 66 batch . && says ".: cannot be read: Is a directory"
    run 66 batch none.jsonl && says "none.jsonl: cannot be read"
    run 64 batch jobs.jsonl --jobs 0
    sed '1,2s/.*//' table >part
    run 3 batch - --first-line 101 <part && says "standard input:104: not JSON"
}

# One JSON object for each job of the run above, in whatever order.
report() {
    python3 - report.jsonl <<'END' || fail "the report"
import json, sys
jobs = {job["line"]: job for job in map(json.loads, open(sys.argv[1]))}
by_output = {job["output"]: job for job in jobs.values()}
assert len(jobs) == 25, len(jobs)
good, there, last = (by_output[name] for name in ("good.png", "there.png", "last.png"))
assert good["status"] == "blended" and good["warnings"] == 0 and good["milliseconds"] > 0, good
assert good["placement"] == {"at": [50, 40], "verdict": "fits"}, good
assert last["warnings"] == 2 and "seam" in last["placement"]["verdict"], last
assert there["status"] == "skipped" and there["placement"] is None, there
assert by_output["h.png"]["status"] == jobs[2]["status"] == "failed", jobs[2]
assert by_output["h.png"]["reason"].startswith("none.png: cannot be read"), by_output["h.png"]
assert jobs[2]["reason"].startswith("not JSON") and jobs[2]["placement"] is None, jobs[2]
END
    run 0 batch --overwrite --report - there.jsonl && [ "$(grep -c '^{"line":1,' out)" -eq 1 ] ||
        fail "no report on standard output"
    run 73 batch --overwrite --report /dev/full there.jsonl
    says "/dev/full: cannot be written: No space" && says "1 blended"
    run 73 batch --report none/report there.jsonl && says "none/report: cannot be written"
}

# A line of a million bytes is a job; a longer one is not, and takes no memory.
long_lines() {
    mkdir long
    local begin='{"source":"cut.png","destination":"black.png","output":"long/1.png"'
    {
        printf '%s%*s\n' "$begin" $((1000000 - ${#begin})) '}'
        printf '%s%*s\n' "${begin/1/2}" $((1000001 - ${#begin})) '}'
        sed 's/reference/long/; q' reference.jsonl
        head -c 300000000 /dev/zero | tr '\0' x
    } >long.jsonl
    (is_sanitized || ulimit -v 200000; exec "$tool" batch long.jsonl 2>err)
    [ $? -eq 3 ] || fail "status with long lines"
    says "long.jsonl:2: job: must not be longer than 1 MB"
    says "long.jsonl:4: job: must not be longer than 1 MB"
    says "2 blended, 2 failed"
}

# Those that can be started do the work. With none, the summary tells what is left.
too_few_processes() {
    is_sanitized && return
    exec 3>&- 4>&- 5>&- 6>&- # what the caller left open
    many few
    (ulimit -n 24 && exec "$tool" batch few.jsonl --jobs 64 2>err) || fail "status $?"
    grep -qE 'only [1-9] of 64 processes can be started: .*Too many open files' err ||
        fail "no message"
    says "$jobs blended, 0 failed"
    complete few
    (ulimit -n 5 && exec "$tool" batch few.jsonl --overwrite --jobs 2 2>err)
    [ $? -eq 70 ] || fail "status without processes"
    says "only 0 of 2 processes" && says "0 blended, 0 failed" && says "; broken off: the same"

    # The second process is refused; the batch keeps no end of a socket to it.
    strace -o /dev/null true 2>/dev/null || return
    printf '{"source":"never.png","destination":"black.png","output":"first.png"}\n{%s}\n' \
        '"source":"cut.png","destination":"black.png","output":"second.png"' >refused.jsonl
    strace -o /dev/null -e inject=clone,clone3,fork,vfork:error=EAGAIN:when=2+ \
        "$tool" batch refused.jsonl --jobs 2 2>err &
    until_true grep -q "only 1 of 2 processes can be started: there is no process: Resource" err
    local batch
    batch=$(pgrep -P $!)
    [ "$(find "/proc/$batch/fd" -lname 'socket:*' | wc -l)" -eq 1 ] || fail "a socket is left open"
    cp cut.png late && cat late >never.png
    wait $! || fail "status with a process less"
    says "2 blended, 0 failed"
}

# Files do not take the numbers of standard streams that are closed.
closed_streams() {
    many closed
    "$tool" batch closed.jsonl --jobs 2 <&- >&- 2>&- || fail "status $? with closed streams"
    complete closed
    "$tool" verify cut.png black.png <&- >&- 2>&- || fail "status $? of verify"
}

# A job whose process dies does not end the others.
lost_process() {
    {
        printf '{"source":"never.png","destination":"black.png","output":"lost/never.png"}\n'
        sed 's/"at.*/"zoom":0.5}/; s/reference/lost/; 5q' reference.jsonl
    } >lost.jsonl
    mkdir lost
    "$tool" batch lost.jsonl --jobs 2 --report lost.report 2>err &
    wait_for 5 lost '[0-9]*.png'
    until_true has_lines lost.report 5 # while the batch still runs
    kill -9 "$(pgrep -P $! | head -n 1)"
    wait $!
    [ $? -eq 3 ] || fail "status after a lost process"
    says "lost.jsonl:1: lost/never.png failed: its process was ended by a signal: Killed"
    says "5 blended, 1 failed"
    find lost -name '.imageblend*' -delete # what kill -9 leaves behind

    # One that dies between two jobs costs none.
    mkfifo idle.jsonl && mkdir idle
    "$tool" batch idle.jsonl --jobs 1 --report idle.report 2>err &
    {
        sed 's/reference/idle/; q' reference.jsonl
        until_true has_lines idle.report 1
        pkill -9 -P $!
        until_true is_dead $!
        sed -n '2s/reference/idle/p' reference.jsonl
    } >idle.jsonl
    wait $! || fail "status after the end of an idle process"
    says "2 blended, 0 failed"
}
# is_dead PARENT: whether its only child has ended
is_dead() { [[ $(ps -o stat= --ppid "$1") == Z* ]]; }

# frames SCREEN: what the bar looked like, one state a line
frames() { tr '\r' '\n' <"$1" | sed 's/\x1b\[K//g' | grep "/$jobs"; }
terminal() {
    command -v script >/dev/null || return
    many seen
    script -qec "'$tool' batch seen.jsonl" /dev/null >screen
    frames screen | grep -qE '^\[#+-*\] [0-9]+/'"$jobs"'  [0-9.]+/s  [0-9]+:[0-9]+ left$' ||
        fail "no progress bar"
    # No job takes less than two milliseconds. The summary's rate is its jobs by its seconds.
    tr '\r' '\n' <screen | awk -v jobs="$jobs" '
        match($0, /[0-9]+\/[0-9]+  [0-9.]+\/s/) {
            split(substr($0, RSTART, RLENGTH), part, /\/|  /)
            wrong = wrong || part[3] > 500 * part[1]
        }
        match($0, /in [0-9.]+ s \([0-9.]+ a second/) {
            split(substr($0, RSTART, RLENGTH), part, / |\(/)
            wrong = wrong || part[5] * (part[2] + 0.06) < jobs || part[5] * (part[2] - 0.06) > jobs
            found = 1
        }
        END { exit wrong || !found }' || fail "rates: $(tr '\r' '\n' <screen | tail -n 4)"
    complete seen
    rm -r seen
    many seen
    printf '{}' >>seen.jsonl # a last line without an end
    sed -i '1s/cut/none/' seen.jsonl
    script -qec "stty cols 40; '$tool' batch seen.jsonl" /dev/null >screen
    jobs=$((jobs + 1)) frames screen >narrow
    grep -qE '^\[#*-+\] .* left  1 failed$' narrow || fail "no narrow bar: $(head -n 5 narrow)"
    [ "$(wc -L <narrow)" -lt 40 ] || fail "the bar is wider than the terminal"
    ! grep -vqE '^\[[#-]{6,24}\] ' narrow || fail "a bar of another size: $(head -n 5 narrow)"
    # Messages take the bar's place.
    tr '\r' '\n' <screen | sed 's/\x1b\[K//g' >lines
    grep -q '^imageblend: seen.jsonl:1: seen/0000.png failed' lines &&
        grep -q '^imageblend: seen.jsonl: [0-9]* blended, 2 failed' lines || fail "a message beside the bar"
    # One line of 7201 is done and the next job waits: half a second later an hour is left or more.
    {
        echo '{}'
        echo '{"source":"never.png","destination":"black.png","output":"never-cut.png"}'
        yes '{}' | head -n 7199
    } >hours.jsonl
    {
        for _ in $(seq 200); do
            ! grep -qE '[0-9]+:[0-9]+:[0-9]+ left' screen || break
            sleep 0.02
        done
        timeout 9 sh -c ': >never.png' # the job ends
    } &
    script -qefc "'$tool' batch hours.jsonl --jobs 1" /dev/null >screen
    wait $!
    tr '\r' '\n' <screen | grep -F ' 1/7201 ' | grep -oE '[0-9:]+ left' >hours
    awk -F '[: ]' '
        { hours = NF == 4; left = hours ? ($1 * 60 + $2) * 60 + $3 : $1 * 60 + $2 }
        (NR == 2 && left < 3600) || left < last || hours != (left >= 3600) || $(NF - 1) > 59 || $(NF - 2) > 59 ||
            length($(NF - 1)) != 2 || (hours && length($2) != 2) { wrong = 1 }
        { last = left }
        END { exit wrong || NR < 2 }' hours || fail "time left: $(xargs <hours)"
}

groups reference lines report long_lines too_few_processes closed_streams lost_process terminal
