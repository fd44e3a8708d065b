// SPDX-License-Identifier: Apache-2.0
// The same bytes in the module as everywhere: the calls of tests/hashes, whose inputs and hashes
// come from a module of their own, are made in imageblend.wasm.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { bytesOf, openModule, putRecord, readModule } from "./modules.mjs";

const library = await openModule("imageblend");
let calls;

// A call: buffers of the other module are copied into the library's memory, one that is named twice
// once, and what the call writes is copied back.
class Crossing {
    #copies = new Map();
    #records = [];

    #copy(address, size) {
        if (!this.#copies.has(address)) {
            const here = library.malloc(size + 1) >>> 0;
            assert.notEqual(here, 0, "no memory");
            bytesOf(library).set(bytesOf(calls).subarray(address, address + size), here);
            this.#copies.set(address, { here, size });
        }
        return this.#copies.get(address).here;
    }

    // A picture by the address of its record; `size` in bytes where it is not that of its pixels.
    picture(record, pixelBytes, size) {
        const view = new DataView(calls.memory.buffer, record, 12);
        const width = view.getInt32(0, true);
        const height = view.getInt32(4, true);
        const pixels = Math.max(width, 0) * Math.max(height, 0);
        const data = this.#copy(view.getUint32(8, true), size ?? pixels * pixelBytes);
        const here = library.malloc(12) >>> 0;
        this.#records.push(here);
        return { record: putRecord(library, here, width, height, data), data, width, height };
    }

    results(count) {
        const here = library.malloc(4 * count) >>> 0;
        this.#records.push(here);
        return here;
    }

    giveBack(address) {
        const { here, size } = this.#copies.get(address);
        bytesOf(calls).set(bytesOf(library).subarray(here, here + size), address);
    }

    end() {
        for (const { here } of this.#copies.values()) library.free(here);
        for (const here of this.#records) library.free(here);
    }
}

function copyWords(from, fromAddress, to, toAddress, count) {
    bytesOf(to).set(bytesOf(from).subarray(fromAddress, fromAddress + 4 * count), toAddress);
}

const dataOf = (record) => new DataView(calls.memory.buffer, record, 12).getUint32(8, true);

const imports = {
    get_icon_size(mask, width, height) {
        const crossing = new Crossing();
        const results = crossing.results(2);
        const status = library.vorn_get_icon_size(
            crossing.picture(mask, 1).record,
            results,
            results + 4,
        );
        copyWords(library, results, calls, width, 1);
        copyWords(library, results + 4, calls, height, 1);
        crossing.end();
        return status;
    },

    create_rgb_icon(source, mask, icon, iconBytes, zoom) {
        const crossing = new Crossing();
        const made = crossing.picture(icon, 4, iconBytes);
        const status = library.vorn_create_rgb_icon(
            crossing.picture(source, 4).record,
            crossing.picture(mask, 1).record,
            made.record,
            zoom,
        );
        crossing.giveBack(dataOf(icon));
        copyWords(library, made.record, calls, icon, 2);
        crossing.end();
        return status;
    },

    verify_icon_pos(mask, x, y, zoom, angle) {
        const crossing = new Crossing();
        const { data, width, height } = crossing.picture(mask, 1);
        const status = library.vorn_verify_icon_pos(data, width, height, 0, 0, x, y, zoom, angle);
        crossing.end();
        return status;
    },

    image_blending(icon, destination, mask, output, x, y, zoom, angle) {
        const crossing = new Crossing();
        const under = crossing.picture(destination, 4);
        const status = library.vorn_imageBlending(
            crossing.picture(icon, 4).record,
            under.record,
            crossing.picture(mask, 1).record,
            crossing.picture(output, 4, 4 * under.width * under.height).record,
            0,
            0,
            x,
            y,
            zoom,
            angle,
        );
        crossing.giveBack(dataOf(output));
        crossing.end();
        return status;
    },
};

// The C++ library asks for files and the environment, of which there are none: EBADF.
const system = {};
for (const { module, name } of WebAssembly.Module.imports(
    new WebAssembly.Module(readModule("calls")),
)) {
    if (module !== "library") system[name] = () => 8;
}

function textAt(address) {
    const memory = bytesOf(calls);
    return new TextDecoder().decode(memory.subarray(address, memory.indexOf(0, address)));
}

test("a thousand calls have the hashes of the table", async () => {
    calls = await openModule("calls", { library: imports, wasi_snapshot_preview1: system });
    const table = readFileSync(new URL("../../tests/hashes/whole_calls.txt", import.meta.url));
    const expected = table.toString().trimEnd().split("\n");
    assert.equal(expected.length, 1000);
    const made = expected.map((_, i) => textAt(calls.call_line(i + 1) >>> 0));
    assert.deepEqual(made, expected);
});
