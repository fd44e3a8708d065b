// SPDX-License-Identifier: Apache-2.0
// What a page has to load: one file that needs nothing else and stays small.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { brotliCompressSync } from "node:zlib";

import { readModule } from "./modules.mjs";

const bytes = readModule("imageblend");

test("the package has the module that was built last", () => {
    const packed = readFileSync(new URL("../lib/imageblend.wasm", import.meta.url));
    assert.ok(packed.equals(bytes), "run scripts/web.sh, or node web/collect.mjs");
});

test("the module imports nothing", () => {
    assert.deepEqual(WebAssembly.Module.imports(new WebAssembly.Module(bytes)), []);
});

test("the module stays below 72 KB, and below 30 KB compressed", () => {
    assert.ok(bytes.length <= 72 * 1024, `${bytes.length} bytes`);
    const compressed = brotliCompressSync(bytes).length;
    assert.ok(compressed <= 30 * 1024, `${compressed} bytes compressed`);
});
