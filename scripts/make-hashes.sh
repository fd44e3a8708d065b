#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes tests/hashes/whole_calls.txt again, after a change of results that is meant.
# usage: scripts/make-hashes.sh [BUILD_FOLDER]
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages g++ cmake make libgtest-dev
build=${1:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DIMAGEBLEND_BUILD_TESTS=ON >/dev/null
cmake --build "$build" -j "$(nproc)" --target hash_calls
"$build/tests/hash_calls" >"$build/whole_calls.txt"
mv "$build/whole_calls.txt" "$root/tests/hashes/whole_calls.txt"
git -C "$root" diff --stat -- tests/hashes
