#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what is missing, builds everything and runs all tests.
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages "${build_packages[@]}" "${test_packages[@]}"
if has_web; then "$root/scripts/web.sh" --tests; fi
cmake -S "$root" -B "$root/build" -DCMAKE_BUILD_TYPE=Release -DIMAGEBLEND_BUILD_TESTS=ON \
    -DIMAGEBLEND_BUILD_BENCH=ON -DIMAGEBLEND_BUILD_JAVA=ON
cmake --build "$root/build" -j "$(nproc)"
ctest --test-dir "$root/build" --output-on-failure -j "$(nproc)"
if ! ctest --test-dir "$root/build" -N | grep '[:] web_' >/dev/null; then
    echo "tests of the npm package left out: scripts/web.sh --tests makes them ready"
fi
