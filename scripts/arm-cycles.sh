#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Prints what the vector loops of 64-bit Arm cost on two phone cores, the table of docs/arm.md.
# CXX is the compiler, Debian's cross g++ if not given.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
# Older releases have no model of the larger core.
need_packages g++-aarch64-linux-gnu llvm-19 python3
CXX=${CXX:-aarch64-linux-gnu-g++}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# As the release build, less what adds no instruction to a loop.
cd "$work"
$CXX -std=c++17 -O3 -ffp-contract=off -fno-unroll-loops -fPIC -fno-exceptions -fno-rtti \
    -fno-threadsafe-statics -fno-asynchronous-unwind-tables -I"$root/src" -S \
    "$root"/src/kernels/arm/neon_*.cpp
python3 "$root/scripts/arm-cycles.py" llvm-mca-19 neon_*.s
