// SPDX-License-Identifier: Apache-2.0
// Pictures for the tests of the page, as files.

import { readFileSync, writeFileSync } from "node:fs";
import { PNG } from "pngjs";

/** Reads a PNG file, or its bytes, as { data, width, height }. */
export function readPng(source) {
    const bytes = Buffer.isBuffer(source) ? source : readFileSync(source);
    const { data, width, height } = PNG.sync.read(bytes);
    return { data: new Uint8ClampedArray(data), width, height };
}

export function writePng(path, { data, width, height }) {
    const image = Object.assign(new PNG({ width, height }), { data: Buffer.from(data) });
    writeFileSync(path, PNG.sync.write(image, { deflateLevel: 1, filterType: 0 }));
    return path;
}

/** A picture whose every pixel is what `colour` returns for it: [red, green, blue, alpha]. */
export function drawn(width, height, colour) {
    const data = new Uint8ClampedArray(width * height * 4);
    for (let at = 0; at < width * height; at++) {
        data.set(colour(at % width, Math.floor(at / width)), at * 4);
    }
    return { data, width, height };
}

/** A ground with some texture, opaque. */
export const ground = (width, height) => drawn(width, height, (x, y) =>
    [40 + ((x * 7 + y * 3) % 60), 90 + ((x + y) % 50), 120 + ((x >> 4) % 40), 255]);

/** A disc that was cut out: opaque inside, and nothing around it. */
export const cutOutDisc = (side) => drawn(side, side, (x, y) => {
    const inside = Math.hypot(x - side / 2, y - side / 2) < side * 0.45;
    return inside ? [200, 60 + (y % 90), 40, 255] : [0, 0, 0, 0];
});

/** How many bytes differ, and the first that does. */
export function difference(a, b) {
    if (a.width !== b.width || a.height !== b.height) {
        return `${a.width} x ${a.height} beside ${b.width} x ${b.height}`;
    }
    let count = 0;
    let first = -1;
    for (let at = 0; at < a.data.length; at++) {
        if (a.data[at] === b.data[at]) continue;
        if (count++ === 0) first = at;
    }
    if (count === 0) return null;
    const pixel = first >> 2;
    return `${count} bytes, first at ${pixel % a.width}, ${Math.floor(pixel / a.width)}: ` +
        `${a.data[first]} beside ${b.data[first]}`;
}
