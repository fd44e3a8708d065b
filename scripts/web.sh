#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the WebAssembly module and packs the npm package with it.
# usage: scripts/web.sh            the package is build-web/imageblend-VERSION.tgz
#        scripts/web.sh --tests    also gets what its tests need from the npm registry
set -euo pipefail
source "$(dirname "$0")/packages.sh"
need_packages "${web_packages[@]}"
need_node
need_npm

cd "$root"
cmake --preset web
cmake --build --preset web -j "$(nproc)"
cd web
node collect.mjs
npm pack --pack-destination ../build-web --ignore-scripts --loglevel=error
if [ "${1:-}" = --tests ] && [ ! node_modules/.package-lock.json -nt package-lock.json ]; then
    npm ci --no-audit --no-fund --loglevel=error || {
        rm -rf node_modules
        echo "the tests of the npm package are left out: npm could not get what they need"
    }
fi
