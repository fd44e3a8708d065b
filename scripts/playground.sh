#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the page to try blends in a browser, and serves it on this machine until Ctrl+C.
# usage: scripts/playground.sh [PORT]      8080 if not given, 0 for any free one
#        scripts/playground.sh --build     only builds: build-web/playground goes to any static host
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages "${web_packages[@]}"
need_node

cd "$root"
cmake --preset web
cmake --build --preset web -j "$(nproc)"
node web/collect.mjs
node web/playground/assemble.mjs build-web/playground
[ "${1:-}" = --build ] || exec node web/playground/serve.mjs build-web/playground "${1:-8080}"
