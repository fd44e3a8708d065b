// SPDX-License-Identifier: Apache-2.0
// How large the module is and how long its blends take: node web/bench.mjs [FOLDER]
// FOLDER is that of the web build, build-web if not given. Times are medians of calls in runs that
// take turns with plain rows; each object is a disc in pictures of noise.
import { brotliCompressSync } from "node:zlib";

if (process.argv[2]) process.env.IMAGEBLEND_WEB_BUILD = process.argv[2];
const { bytesOf, openModule, putRecord, readModule } = await import("./tests/modules.mjs");

const cases = [
    { name: "512 x 512, object 500", width: 512, height: 512, angle: 0 },
    { name: "1280 x 853, object 500", width: 1280, height: 853, angle: 0 },
    { name: "1280 x 853, object 500, turned", width: 1280, height: 853, angle: 30 },
];
const OBJECT = 500;
const ROUNDS = 12;
const RUN = 10;

function fillNoise(bytes, seed) {
    let state = seed;
    for (let i = 0; i < bytes.length; i++) {
        state = (Math.imul(state, 1103515245) + 12345) >>> 0;
        bytes[i] = state >>> 24;
    }
}

// A blend in the module of `exports` that can be repeated.
function prepareBlend(exports, { width, height, angle }) {
    const pixels = width * height;
    const [icon, destination, output] = [0, 1, 2].map(() => exports.malloc(4 * pixels) >>> 0);
    const mask = exports.malloc(pixels) >>> 0;
    const records = exports.malloc(48) >>> 0;
    const memory = bytesOf(exports);
    fillNoise(memory.subarray(icon, icon + 4 * pixels), 1);
    fillNoise(memory.subarray(destination, destination + 4 * pixels), 2);
    for (let i = 0; i < pixels; i++) {
        const x = (i % width) + 0.5 - width / 2;
        const y = Math.floor(i / width) + 0.5 - height / 2;
        memory[mask + i] = 4 * (x * x + y * y) <= OBJECT * OBJECT ? 255 : 0;
    }
    const at = [icon, destination, mask, output].map((data, i) =>
        putRecord(exports, records + 12 * i, width, height, data),
    );
    return () => {
        if (exports.vorn_imageBlending(...at, 0, 0, width >> 1, height >> 1, 1, angle) !== 0) {
            throw new Error("the blend failed");
        }
    };
}

function timeOf(call) {
    const begin = performance.now();
    call();
    return performance.now() - begin;
}

function median(values) {
    return values.sort((a, b) => a - b)[values.length >> 1];
}

// Medians of several calls that take turns. The first rounds let the engine compile; the first call
// of each run finds caches that hold the pictures of the others.
function timesOf(calls) {
    const times = calls.map(() => []);
    for (let round = -ROUNDS; round < ROUNDS; round++) {
        calls.forEach((call, i) => {
            for (let k = 0; k < RUN; k++) {
                const time = timeOf(call);
                if (round >= 0 && k > 0) times[i].push(time);
            }
        });
    }
    return times.map(median);
}

const bytes = readModule("imageblend");
const compressed = brotliCompressSync(bytes).length;
console.log(`imageblend.wasm: ${bytes.length} bytes, ${compressed} in brotli`);
for (const blend of cases) {
    const plain = await openModule("rows");
    plain.use_plain_rows(1);
    const [vectors, rows] = timesOf([
        prepareBlend(await openModule("imageblend"), blend),
        prepareBlend(plain, blend),
    ]);
    console.log(
        `${blend.name}: ${vectors.toFixed(2)} ms, ` +
            `with plain rows ${rows.toFixed(2)} ms, ${(rows / vectors).toFixed(1)} times as long`,
    );
}
