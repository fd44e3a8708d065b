// SPDX-License-Identifier: Apache-2.0
// Pictures for the tests, and what they are compared by.
import assert from "node:assert/strict";

// Numbers below 2^32 that follow each other without a pattern.
function* numbers(seed) {
    for (let state = seed >>> 0; ; ) {
        state = (state + 0x6d2b79f5) >>> 0;
        let mixed = Math.imul(state ^ (state >>> 15), state | 1);
        mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
        yield (mixed ^ (mixed >>> 14)) >>> 0;
    }
}

/** Smooth colours with noise; alpha is 255, or what `alpha` gives for x and y. */
export function picture(seed, width, height, alpha = () => 255) {
    const data = new Uint8ClampedArray(width * height * 4), noise = numbers(seed);
    for (let i = 0; i < data.length; i += 4) {
        const x = (i / 4) % width, y = Math.floor(i / 4 / width);
        const level = noise.next().value & 31;
        data[i] = 40 + level + (seed * 53 + x) % 160;
        data[i + 1] = 40 + level + (seed * 97 + y) % 160;
        data[i + 2] = 40 + level + (seed * 31 + x + y) % 160;
        data[i + 3] = alpha(x, y);
    }
    return { data, width, height };
}

/** One byte a pixel; soft for a pixel along the edge if asked for. */
export function ellipse(width, height, x, y, rx, ry, soft = false) {
    const data = new Uint8Array(width * height);
    for (let i = 0; i < data.length; i++) {
        const dx = ((i % width) - x) / rx, dy = (Math.floor(i / width) - y) / ry;
        const inside = (1 - Math.hypot(dx, dy)) * Math.min(rx, ry);
        data[i] = soft ? 255 * Math.min(Math.max(inside + 0.5, 0), 1) : inside > 0 ? 255 : 0;
    }
    return { data, width, height };
}

/** An object in a picture whose colours change at the mask's edge. */
export function marked(seed, width, height, mask) {
    const inside = picture(seed, width, height), around = picture(seed + 7, width, height);
    for (let i = 0; i < mask.data.length; i++) {
        if (mask.data[i] >= 128) continue;
        inside.data.set(around.data.subarray(4 * i, 4 * i + 4).map((v) => v >> 1), 4 * i);
        inside.data[4 * i + 3] = 255;
    }
    return { picture: inside, mask };
}

export const copyOf = ({ data, width, height }) => ({ data: data.slice(), width, height });

/** The box around the pixels that differ. */
export function difference(a, b) {
    let left = a.width, right = 0, top = a.height, bottom = 0;
    for (let i = 0; i < a.data.length; i++) {
        if (a.data[i] === b.data[i]) continue;
        const x = (i >> 2) % a.width, y = Math.floor((i >> 2) / a.width);
        left = Math.min(left, x);
        right = Math.max(right, x + 1);
        top = Math.min(top, y);
        bottom = Math.max(bottom, y + 1);
    }
    return { left, top, width: Math.max(right - left, 0), height: Math.max(bottom - top, 0) };
}

export function assertSame(a, b, what) {
    assert.equal(a.width, b.width, what);
    assert.equal(a.height, b.height, what);
    const { left, top, width, height } = difference(a, b);
    assert.equal(width, 0, `${what}: differ in ${width} x ${height} at ${left}, ${top}`);
}

export function isInside(inner, outer) {
    return inner.width === 0 || (inner.left >= outer.left && inner.top >= outer.top &&
        inner.left + inner.width <= outer.left + outer.width &&
        inner.top + inner.height <= outer.top + outer.height);
}

export const failsWith = (code) => (error) =>
    error.name === "ImageBlendError" && error.code === code && error.message.length > 10;
