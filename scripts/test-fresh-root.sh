#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the README's two commands on a minimal Debian 12 in a folder of its own, once as root and once
# as a user with sudo. Takes about a quarter of an hour and 4 GB under $TMPDIR. Where the system
# cannot be made it says so in one line and succeeds.
# usage: scripts/test-fresh-root.sh [COMMAND...]    scripts/demo.sh and scripts/test.sh if not given
set -euo pipefail
source "$(dirname "$0")/packages.sh"

leave_out() {
    echo "test-fresh-root.sh: left out: $*"
    exit 0
}

[ "$(id -u)" -eq 0 ] || leave_out "needs root"
unshare --mount true 2>/dev/null || leave_out "mounts are not allowed here"
need_packages mmdebstrap
commands=("$@")
[ $# -gt 0 ] || commands=(scripts/demo.sh scripts/test.sh)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mmdebstrap --mode=root --variant=minbase --quiet bookworm "$work/root.tar" 2>"$work/log" ||
    leave_out "no Debian could be fetched: $(tail -n 1 "$work/log")"

# inside SYSTEM COMMAND...: in the folder, with mounts that end with the command.
inside() {
    local system=$1
    shift
    unshare --mount --pid --fork -- bash -c '
        mount -t proc proc "$0/proc"
        mount --rbind /dev "$0/dev"
        exec env -i HOME=/root TERM=dumb PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$0" "$@"' \
        "$system" "$@" </dev/null
}

# new_system: unpacks it, with a copy of the working tree's files.
new_system() {
    system=$work/system
    rm -rf "$system"
    mkdir "$system"
    tar -C "$system" --numeric-owner -xpf "$work/root.tar"
    cp /etc/resolv.conf "$system/etc/"
    mkdir "$system/imageblend"
    git -C "$root" ls-files -z | tar -C "$root" --null --files-from=- -cf - |
        tar -C "$system/imageblend" --no-same-owner -xf -
}

# run_as NAME SHELL_COMMAND...: every command of the README, one after the other.
run_as() {
    local name=$1 command start
    shift
    for command in "${commands[@]}"; do
        start=$SECONDS
        if ! inside "$system" "$@" "cd /imageblend && $command" >"$work/log" 2>&1; then
            tail -n 100 "$work/log" >&2
            echo "test-fresh-root.sh: $command failed as $name" >&2
            exit 1
        fi
        # What reads like a failure to someone who sees the project for the first time.
        if grep -iE 'could not find|not found|warning' "$work/log" >&2; then
            echo "test-fresh-root.sh: $command as $name printed these lines" >&2
            exit 1
        fi
        echo "$command as $name: $((SECONDS - start)) s"
    done
}

new_system
run_as root bash -c

new_system
inside "$system" bash -c 'apt-get -q update && apt-get -q install -y --no-install-recommends sudo &&
    useradd --create-home --shell /bin/bash newcomer && chown -R newcomer /imageblend &&
    echo "newcomer ALL=(ALL) NOPASSWD: ALL" >/etc/sudoers.d/newcomer' >"$work/log" 2>&1 ||
    { cat "$work/log" >&2; exit 1; }
run_as 'a user with sudo' su newcomer -c
