// SPDX-License-Identifier: Apache-2.0
// The modules that the preset `web` builds, in the folder of that build: IMAGEBLEND_WEB_BUILD, else
// build-web in the repository.
import { readFileSync } from "node:fs";
import { fileURLToPath } from "node:url";

const folder =
    process.env.IMAGEBLEND_WEB_BUILD ?? fileURLToPath(new URL("../../build-web", import.meta.url));

export function readModule(name) {
    return readFileSync(`${folder}/${name}.wasm`);
}

// The exports of a module that is ready for calls.
export async function openModule(name, imports = {}) {
    const { instance } = await WebAssembly.instantiate(readModule(name), imports);
    instance.exports._initialize();
    return instance.exports;
}

// A view of all memory, new each time, as memory that grows leaves older views empty.
export function bytesOf(exports) {
    return new Uint8Array(exports.memory.buffer);
}

// Writes a picture's record: width, height, address of its pixels.
export function putRecord(exports, at, width, height, data) {
    const view = new DataView(exports.memory.buffer, at, 12);
    view.setInt32(0, width, true);
    view.setInt32(4, height, true);
    view.setUint32(8, data, true);
    return at;
}
