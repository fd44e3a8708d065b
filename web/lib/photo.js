// SPDX-License-Identifier: Apache-2.0
// The photo in the module's memory: as it was given, and with an object in it. Both are RGBA. The
// module is handed addresses one byte early, so that a pixel's first byte is the alpha of the pixel
// before it. Of an opaque photo that is the same; others are blended by parts, see blender.js.
import { alphaFirst, alphaLast, isOpaque, makeResult, wordsOf } from "./pictures.js";

// The byte before the first pixel stands for its alpha.
const BEFORE = 16;

export const NOTHING = Object.freeze({ left: 0, top: 0, width: 0, height: 0 });

export function unite(a, b) {
    if (a.width === 0 || a.height === 0) return b;
    if (b.width === 0 || b.height === 0) return a;
    const left = Math.min(a.left, b.left), top = Math.min(a.top, b.top);
    return { left, top,
        width: Math.max(a.left + a.width, b.left + b.width) - left,
        height: Math.max(a.top + a.height, b.top + b.height) - top };
}

export class Photo {
    #core;
    #given;
    #shown;
    #result = null;
    #changed = NOTHING;

    constructor(core, width, height) {
        this.#core = core;
        this.width = width;
        this.height = height;
        this.#given = core.alloc(this.#byteCount);
        try {
            this.#shown = core.alloc(BEFORE + this.#byteCount) + BEFORE;
        } catch (error) {
            core.free(this.#given);
            throw error;
        }
    }

    get #byteCount() {
        return this.width * this.height * 4;
    }

    #words(address, begin, end) {
        return this.#core.words.subarray(address / 4 + begin, address / 4 + end);
    }

    /** Replaces all pixels. */
    fill(data) {
        const { bytes } = this.#core;
        bytes.set(data, this.#given);
        bytes.set(data, this.#shown);
        bytes[this.#shown - 1] = 255;
        this.opaque = isOpaque(wordsOf(data));
        this.#changed = NOTHING;
    }

    get whole() {
        return { left: 0, top: 0, width: this.width, height: this.height };
    }

    /** The part of a box that lies in the photo. */
    cut(box) {
        const left = Math.min(Math.max(box.left, 0), this.width);
        const top = Math.min(Math.max(box.top, 0), this.height);
        return { left, top,
            width: Math.min(Math.max(box.left + box.width, left), this.width) - left,
            height: Math.min(Math.max(box.top + box.height, top), this.height) - top };
    }

    /** For the module, which reads and writes the shown pixels there. */
    get image() {
        return { width: this.width, height: this.height, data: this.#shown - 1 };
    }

    /** Says where shown pixels will be written. */
    touch(box) {
        this.#changed = unite(this.#changed, this.cut(box));
    }

    /** Takes the object out again. Returns where it was. */
    restore() {
        const was = this.#changed, { bytes } = this.#core;
        for (let y = was.top; y < was.top + was.height; y++) {
            const begin = 4 * (y * this.width + was.left);
            bytes.copyWithin(this.#shown + begin, this.#given + begin,
                this.#given + begin + 4 * was.width);
        }
        this.#changed = NOTHING;
        return was;
    }

    get changed() {
        return this.#changed;
    }

    /** A part of the shown pixels as an image of its own, alpha first. */
    lift(box) {
        const image = this.#core.newImage(box.width, box.height, 4);
        for (let y = 0; y < box.height; y++) {
            const from = (box.top + y) * this.width + box.left;
            alphaFirst(this.#words(this.#shown, from, from + box.width),
                this.#words(image.data, y * box.width, (y + 1) * box.width));
        }
        return image;
    }

    /** Puts back what was lifted. */
    lay(image, box) {
        for (let y = 0; y < box.height; y++) {
            const to = (box.top + y) * this.width + box.left;
            alphaLast(this.#words(image.data, y * box.width, (y + 1) * box.width),
                this.#words(this.#shown, to, to + box.width));
        }
    }

    /** The shown pixels for a caller. */
    get result() {
        const { buffer } = this.#core.bytes;
        if (this.#result?.data.buffer !== buffer) {
            const data = new Uint8ClampedArray(buffer, this.#shown, this.#byteCount);
            this.#result = makeResult(data, this.width, this.height);
        }
        return this.#result;
    }

    free() {
        this.#core.free(this.#given);
        this.#core.free(this.#shown - BEFORE);
    }
}
