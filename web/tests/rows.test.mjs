// SPDX-License-Identifier: Apache-2.0
// The row operations of the module as tests/kernels/row_test.cpp tries those of machines: vectors
// give what the plain rows give at every length, where nothing beside their rows can be touched, and
// both round every value rightly.
import assert from "node:assert/strict";
import { before, test } from "node:test";

import { bytesOf, openModule } from "./modules.mjs";

const PLAIN = 0;
const VECTORS = 1;
const UNTOUCHED = 0xc7;
const ARENA = 1 << 20;

let rows;
let memory;
let arena; // ARENA bytes that end with the memory, behind which nothing can be read

before(async () => {
    rows = await openModule("rows");
    arena = rows.memory.grow(ARENA / 65536) * 65536;
    memory = bytesOf(rows);
});

// Numbers that are the same in each run.
function makeRandom(seed) {
    let state = seed | 1;
    return () => {
        state ^= state << 13;
        state ^= state >>> 17;
        state ^= state << 5;
        return state >>> 0;
    };
}

const kinds = {
    full: () => 255,
    bytes: (i) => (i % 2 === 0 ? 255 : 0),
    pixels: (i) => (Math.floor(i / 3) % 2 === 0 ? 0 : 255),
    random: (i, random) => random() >>> 24,
    extremes: (i, random) => ((random() >>> 24) & 1) * 255,
};

function makeData(kind, count, seed) {
    const random = makeRandom(seed * 7919 + count);
    return Uint8Array.from({ length: count }, (_, i) => kinds[kind](i, random));
}

// Runs one operation: the input number `last` ends with the memory, the output where it does is
// `last` = inputs.length; the others lie before, and what is around the output must stay.
function run(operation, table, last) {
    const { inputs, size, call } = operation;
    memory.fill(UNTOUCHED, arena);
    let next = arena + 64;
    const place = (bytes, isLast) => {
        const at = isLast ? arena + ARENA - bytes : next;
        if (!isLast) next += bytes + 64;
        return at;
    };
    const addresses = inputs.map((input, i) => {
        const at = place(input.length, i === last);
        memory.set(input, at);
        return at;
    });
    const out = place(size, last === inputs.length);
    call(table, addresses, out);
    const end = Math.min(out + size + 64, arena + ARENA);
    for (const [from, to] of [
        [out - 64, out],
        [out + size, end],
    ]) {
        for (let i = from; i < to; i++) {
            assert.equal(memory[i], UNTOUCHED, `${operation.name}: ${i}`);
        }
    }
    return memory.slice(out, out + size);
}

function compare(operation) {
    const expected = run(operation, PLAIN, -1);
    for (let last = 0; last <= operation.inputs.length; last++) {
        const made = run(operation, VECTORS, last);
        const at = made.findIndex((value, i) => value !== expected[i]);
        if (at >= 0) assert.fail(`${operation.name}: byte ${at} of ${operation.size}`);
    }
}

// On n elements, and on n pixels with a mask of n bytes.
function elementOperations(n, kind) {
    const data = (count, seed) => makeData(kind, count, seed);
    const other = (count, seed) => makeData("random", count, seed);
    const mask = n % 3 === 0 ? data(n, 1) : other(n, 1);
    const weight = (n * 37) % 129;
    const operations = [
        {
            name: "mix_rows",
            inputs: [data(n, 2), other(n, 3)],
            size: n,
            call: (t, [a, b], out) => rows.mix_rows(t, a, b, weight, out, n),
        },
        {
            name: "pack_rgb",
            inputs: [other(4 * n, 4)],
            size: 3 * n,
            call: (t, [a], out) => rows.pack_rgb(t, a, out, n),
        },
        {
            name: "unpack_rgb",
            inputs: [other(3 * n, 5)],
            size: 4 * n,
            call: (t, [a], out) => rows.unpack_rgb(t, a, out, n),
        },
        {
            name: "reduce_column",
            inputs: [data(n, 6), other(n, 7), data(n, 8), other(n, 9), data(n, 10)],
            size: n,
            call: (t, taps, out) => rows.reduce_column(t, ...taps, out, n),
        },
    ];
    for (const odd of [0, 1]) {
        operations.push({
            name: odd ? "merge_odd" : "merge_even",
            inputs: [mask, data(3 * n, 11), other(3 * n, 12), other(9 * n, 13), data(9 * n, 14)],
            size: 3 * n,
            call: (t, [m, src, under, a, b], out) =>
                rows.merge_rows_of(t, odd, m, src, under, a, b, a, 3 * n, out, n),
        });
    }
    return operations;
}

// Rows of n pixels made narrower and wider, and rows of several widths resampled to n.
function filterOperations(n, kind) {
    const operations = [];
    const add = (name, channels, width) =>
        operations.push({
            name: `${name} to ${width}`,
            inputs: [makeData(kind, channels * n, 15)],
            size: channels * width,
            call: (t, [src], out) => rows[name](t, src, n, out, width),
        });
    for (const narrow of new Set([n >> 1, (n >> 1) - 1, Math.floor(n / 3) + 1, 2])) {
        if (narrow < 2 || 2 * narrow > n) continue;
        add("reduce_row_c3", 3, narrow);
        add("reduce_row_c1", 1, narrow);
    }
    for (const more of n >= 2 ? [0, 1, 5, 9] : []) {
        const written = 2 * n + Math.min(more, 1);
        operations.push({
            name: `expand_row_c3 to ${2 * n + more}`,
            inputs: [makeData(kind, 3 * n, 16)],
            size: 3 * written,
            call: (t, [src], out) => rows.expand_row_c3(t, src, n, out, 2 * n + more),
        });
    }
    for (const width of [2, 3, 7, n + 1, 2 * n + 5]) {
        const taps = new Int32Array(2 * n);
        for (let i = 0; i < n; i++) {
            taps[2 * i] = Math.floor((i * (width - 2)) / Math.max(n - 1, 1));
            taps[2 * i + 1] = i % 5 === 0 ? (i % 2) * 128 : (i * 53) % 129;
        }
        operations.push({
            name: `resample_row_c3 from ${width}`,
            // Two bytes behind the last named pixel may be read.
            inputs: [makeData(kind, 3 * width + 2, 17), new Uint8Array(taps.buffer)],
            size: 3 * n,
            call: (t, [src, at], out) => rows.resample_row_c3(t, src, at, out, n),
        });
    }
    return operations;
}

test("vectors give what plain rows give at every length", () => {
    for (let n = 1; n <= 132; n++) {
        for (const kind of Object.keys(kinds)) {
            for (const operation of [...elementOperations(n, kind), ...filterOperations(n, kind)]) {
                operation.name = `length ${n}, ${kind} data, ${operation.name}`;
                compare(operation);
            }
        }
    }
});

// What lies before address 0 is the end of an address space that the module does not have.
test("nothing before a row is read", () => {
    const n = 100;
    const outputs = arena + 64;
    for (const name of ["reduce_row_c3", "reduce_row_c1"]) {
        rows[name](VECTORS, 0, n, outputs, n / 2);
    }
    rows.expand_row_c3(VECTORS, 0, n, outputs, 2 * n);
    rows.pack_rgb(VECTORS, 0, outputs, n);
    rows.unpack_rgb(VECTORS, 0, outputs, n);
    rows.reduce_column(VECTORS, 0, 0, 0, 0, 0, outputs, n);
    rows.mix_rows(VECTORS, 0, 0, 5, outputs, n);
    for (const odd of [0, 1]) {
        rows.merge_rows_of(VECTORS, odd, 0, 0, 0, 0, 0, 0, 3 * n, outputs, n);
    }
});

for (const [table, name] of ["plain rows", "vectors"].entries()) {
    test(`${name} filter and mix every pair of bytes`, () => {
        const count = 65536;
        const [a, b, out] = [0, 1, 2].map((i) => arena + i * count);
        for (let i = 0; i < count; i++) {
            memory[a + i] = i >> 8;
            memory[b + i] = i & 255;
        }
        const expect = (what, weightA, weightB, half, shift) => {
            for (let i = 0; i < count; i++) {
                const value = (weightA * (i >> 8) + weightB * (i & 255) + half) >> shift;
                if (memory[out + i] !== value) assert.fail(`${what} of ${i >> 8} and ${i & 255}`);
            }
        };
        rows.reduce_column(table, b, a, b, a, a, out, count);
        expect("reduce_column", 9, 7, 8, 4);
        for (let weight = 0; weight <= 128; weight++) {
            rows.mix_rows(table, a, b, weight, out, count);
            expect(`mix by ${weight}`, 128 - weight, weight, 64, 7);
        }
    });

    // Coarser rows that are alike expand to themselves.
    test(`${name} merge every mask and difference`, () => {
        const values = 511;
        const count = 3 * values;
        const [mask, src, under, coarseSrc, coarseUnder, base, out] = [0, 1, 2, 3, 4, 5, 6].map(
            (i) => arena + i * 8192,
        );
        const a = new Int32Array(count);
        const b = new Int32Array(count);
        for (let weight = 0; weight < 256; weight++) {
            memory.fill(weight, mask, mask + values);
            for (let step = -2; step < values; step += 7) {
                for (let i = 0; i < count; i++) {
                    const at = Math.floor(i / 3);
                    const other = step < 0 ? (at % 2) * 510 : at + step + weight + (i % 3);
                    a[i] = at - 255;
                    b[i] = (other % values) - 255;
                    memory[src + i] = Math.max(a[i], 0);
                    memory[coarseSrc + i] = Math.max(-a[i], 0);
                    memory[under + i] = Math.max(b[i], 0);
                    memory[coarseUnder + i] = Math.max(-b[i], 0);
                    memory[base + i] = i * 7;
                }
                const odd = step & 1;
                rows.merge_rows_of(
                    table,
                    odd,
                    mask,
                    src,
                    under,
                    coarseSrc,
                    coarseUnder,
                    base,
                    0,
                    out,
                    values,
                );
                for (let i = 0; i < count; i++) {
                    const blended = (weight * a[i] + (255 - weight) * b[i] + 128) >> 8;
                    const value = Math.min(Math.max(memory[base + i] + blended, 0), 255);
                    if (memory[out + i] !== value) {
                        assert.fail(`mask ${weight}, differences ${a[i]} and ${b[i]}`);
                    }
                }
            }
        }
    });
}
