#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the library and the tests for 64-bit Arm and runs them in qemu's user emulation.
# IMAGEBLEND_TEST_CALLS sets the number of random calls: 200 if not given, as emulation is slow.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages g++-aarch64-linux-gnu binutils cmake make qemu-user googletest
export IMAGEBLEND_TEST_CALLS=${IMAGEBLEND_TEST_CALLS:-200}
build=${1:-$root/build-arm64}
cmake --preset arm64 -S "$root" -B "$build"
cmake --build "$build" -j "$(nproc)"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)"
