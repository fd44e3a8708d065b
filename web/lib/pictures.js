// SPDX-License-Identifier: Apache-2.0
// Pictures and masks as callers have them, and as the module has them.
import { fail } from "./errors.js";

const isBytes = (data) => data instanceof Uint8ClampedArray || data instanceof Uint8Array;

function checkSides(name, picture) {
    if (picture === null || typeof picture !== "object" || !isBytes(picture.data)) {
        fail("argument", `${name} has no data of 8-bit values, width and height`);
    }
    for (const side of [picture.width, picture.height]) {
        if (!Number.isInteger(side) || side < 1 || side >= 2 ** 31) {
            fail("size", `${name} has a side of ${side} pixels`);
        }
    }
}

/** A picture of RGBA. */
export function checkPicture(name, picture) {
    checkSides(name, picture);
    const { data, width, height } = picture;
    if (data.length !== width * height * 4) {
        fail("size", `${name} has ${data.length} bytes, must be ${width} x ${height} x 4`);
    }
    return picture;
}

/** The pixels as words, red in the lowest byte. */
export function wordsOf(data) {
    // Not slice, by which a Buffer stays where it is.
    const bytes = data.byteOffset % 4 === 0 ? data : new Uint8Array(data);
    return new Uint32Array(bytes.buffer, bytes.byteOffset, bytes.length / 4);
}

export function isOpaque(words) {
    let all = 0xffffffff;
    for (let i = 0; i < words.length; i++) all &= words[i];
    return all >>> 24 === 255;
}

/** From red, green, blue, alpha to alpha, red, green, blue. */
export function alphaFirst(from, to) {
    for (let i = 0; i < from.length; i++) to[i] = (from[i] << 8) | (from[i] >>> 24);
}

export function alphaLast(from, to) {
    for (let i = 0; i < from.length; i++) to[i] = (from[i] >>> 8) | (from[i] << 24);
}

function alphaOf(words) {
    const alpha = new Uint8Array(words.length);
    for (let i = 0; i < alpha.length; i++) alpha[i] = words[i] >>> 24;
    return alpha;
}

// The weights add up to 256, so that grey keeps its value.
function brightnessOf(words) {
    const grey = new Uint8Array(words.length);
    for (let i = 0; i < grey.length; i++) {
        const word = words[i];
        grey[i] = (77 * (word & 255) + 150 * ((word >>> 8) & 255) + 29 * ((word >>> 16) & 255)) >> 8;
    }
    return grey;
}

// How far noise of lossy compression reaches from 0 and from 255, in a mask that is hard otherwise.
const NOISE = 32;

// Noise lies at both ends alike, and little between; what is soft lies between or is faint.
function isNoisy(counts) {
    const sum = (begin, end) => counts.subarray(begin, end).reduce((all, n) => all + n, 0);
    const faint = sum(1, NOISE), middle = sum(NOISE, 256 - NOISE), strong = sum(256 - NOISE, 255);
    if (sum(128, 256) === 0 || faint + strong === 0) return false;
    const twoValued =
        4 * middle <= faint + strong && 8 * Math.min(faint, strong) >= faint + strong;
    return twoValued || (faint > 4 * counts[0] && faint > middle);
}

function withoutNoise(mask) {
    const counts = new Float64Array(256);
    for (let i = 0; i < mask.length; i++) counts[mask[i]]++;
    if (!isNoisy(counts)) return mask;
    const scale = 255 / (255 - 2 * NOISE);
    const table = Uint8ClampedArray.from({ length: 256 }, (_, level) => (level - NOISE) * scale);
    return mask.map((level) => table[level]);
}

/** A mask's bytes, one a pixel; may be the caller's own. */
export function maskBytes(mask) {
    checkSides("mask", mask);
    const { data, width, height } = mask;
    if (data.length === width * height) return withoutNoise(data);
    if (data.length !== width * height * 4) {
        fail("size", `mask has ${data.length} bytes, must be ${width} x ${height} or 4 times that`);
    }
    const words = wordsOf(data);
    return withoutNoise(isOpaque(words) ? brightnessOf(words) : alphaOf(words));
}

/** Picture, mask's bytes and whether the picture's own alpha is the mask. */
export function readSource(object) {
    const own = object !== null && typeof object === "object" && object.data !== undefined;
    const picture = checkPicture("object", own ? object : object?.picture);
    if (own) return { picture, mask: alphaOf(wordsOf(picture.data)), own };
    const { width, height } = picture, given = object.mask;
    const mask = maskBytes(given);
    if (given.width !== width || given.height !== height) {
        fail("size", `mask is ${given.width} x ${given.height}, ` +
            `but its picture is ${width} x ${height}`);
    }
    return { picture, mask, own };
}

/** What callers get: an ImageData where there is one, around these very bytes. */
export function makeResult(data, width, height) {
    return typeof ImageData === "function" ? new ImageData(data, width, height)
        : { data, width, height };
}
