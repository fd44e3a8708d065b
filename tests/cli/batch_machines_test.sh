#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# batch_machines_test.sh IMAGEBLEND: a job file split among machines by GNU parallel. The machines
# are two ssh servers of this test on the loopback, with keys and settings in its folder. One dies
# while it works.
source "$(dirname "$0")/batch_helpers.sh"
if ! sshd=$(PATH=$PATH:/usr/sbin command -v sshd) || ! command -v ssh parallel | grep -q parallel; then
    echo "skipped: needs openssh-server, openssh-client and parallel"
    exit 77
fi

# Those that a process started, and it.
family() {
    local child
    for child in $(pgrep -P "$1"); do family "$child"; done
    echo "$1"
}
servers=()
end_servers() {
    local server
    for server in "${servers[@]}"; do
        # shellcheck disable=SC2046 # one process a word
        kill -9 $(family "$server") 2>/dev/null
    done
    [ -z "$made_folder" ] || rmdir /run/sshd
    rm -rf "$work"
}
made_folder=
trap 'if [ $BASHPID -eq $$ ]; then end_servers; fi' EXIT
# sshd wants this folder when it is started as root.
[ "$(id -u)" -ne 0 ] || [ -d /run/sshd ] || { mkdir -p /run/sshd && made_folder=yes; }

# serve NAME: starts a server on a free port and makes its name known to ssh.
serve() {
    local name=$1 port
    for _ in $(seq 20); do
        port=$((RANDOM % 20000 + 20000))
        "$sshd" -D -e -f /dev/null -h "$work/key" -o ListenAddress=127.0.0.1:$port \
            -o PidFile=none -o UsePAM=no -o StrictModes=no -o PermitRootLogin=yes \
            -o "AuthorizedKeysFile=$work/key.pub" -o "SetEnv=HOME=$work" 2>"$name.log" &
        server=$!
        disown $server
        until grep -qs 'listening on' "$name.log" || ! kill -0 $server 2>/dev/null; do sleep 0.02; done
        kill -0 $server 2>/dev/null && break # else the port was taken
    done
    servers+=("$server")
    printf 'Host %s\n HostName 127.0.0.1\n Port %s\n User %s\n IdentityFile %s\n' \
        "$name" "$port" "$(id -un)" "$work/key" >>ssh_config
    printf ' BatchMode yes\n StrictHostKeyChecking no\n UserKnownHostsFile /dev/null\n LogLevel ERROR\n' \
        >>ssh_config
}

# split_among_machines NAME: the line that the help gives, with parts of 25 jobs
split_among_machines() {
    PARALLEL_SSH="ssh -F $work/ssh_config" bash -c "$("$tool" batch --help |
        sed -n '/^  parallel/,$p' | sed "s,imageblend,$tool,; s/100/25/g; s|one,two|2/one,2/two|
        s/parts[.]log/$1.log/; s/jobs[.]jsonl/$1.jsonl/")" 2>err
}

machines() {
    mkdir .parallel && touch .parallel/will-cite
    ssh-keygen -q -t ed25519 -N '' -f key
    serve one
    serve two
    ssh -F ssh_config two true || { fail "no server: $(cat two.log)"; return; }

    # Messages have the line numbers of the job file.
    many wrong
    sed -i '60s/cut/none/' wrong.jsonl
    split_among_machines wrong && fail "a failed job goes unnoticed"
    says "standard input:60: wrong/0059.png failed: none.png: cannot be read"

    # The job of line 60 never ends on the machine that takes it, which is lost with all it runs.
    many shared
    sed -i '60s/cut/late/' shared.jsonl
    mkfifo late.png
    split_among_machines shared &
    local parallel=$! one two lost
    until_true test -e shared/0058.png # the job before it
    read -r one two <<<"${servers[*]}"
    lost=$one
    pgrep -P "$(family "$two" | xargs | tr ' ' ,)" -f 'batch - --first-line 51$' >lost && lost=$two
    cp cut.png late && mv late late.png
    # shellcheck disable=SC2046
    kill -9 $(family "$lost") 2>/dev/null || fail "no machine is lost"
    wait $parallel || fail "status $? of parallel"
    find shared -name '.imageblend*' -delete # of the machine that was lost
    complete shared
    [ "$(tail -n +2 shared.log | cut -f 7 | sort -u)" = 0 ] || fail "a part failed: $(cat shared.log)"
    [ "$(tail -n +2 shared.log | wc -l)" -eq $(((jobs + 24) / 25)) ] || fail "parts are missing"
}

groups reference machines
