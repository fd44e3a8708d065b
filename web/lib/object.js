// SPDX-License-Identifier: Apache-2.0
// An object in the module's memory: its picture and mask as they were given, and what is made of
// them once.
import { checkNumber, fail } from "./errors.js";
import { findOutline, middleOf } from "./outline.js";
import { alphaFirst, readSource, wordsOf } from "./pictures.js";

/** The pixels of an image as words, good until the memory grows. */
export function wordsIn(core, image) {
    const start = image.data / 4;
    return core.words.subarray(start, start + image.width * image.height);
}

function bytesIn(core, image) {
    return core.bytes.subarray(image.data, image.data + image.width * image.height);
}

/** What lies in a box of an image of 4-byte pixels, 0 beyond it. */
export function cutImage(core, image, box) {
    const part = core.newImage(box.width, box.height, 4);
    const from = wordsIn(core, image), to = wordsIn(core, part).fill(0);
    const left = Math.max(box.left, 0), right = Math.min(box.left + box.width, image.width);
    const bottom = Math.min(box.top + box.height, image.height);
    for (let y = Math.max(box.top, 0); y < bottom && left < right; y++) {
        to.set(from.subarray(y * image.width + left, y * image.width + right),
            (y - box.top) * box.width + left - box.left);
    }
    return part;
}

function alphaOf(core, image) {
    return Uint8Array.from(wordsIn(core, image), (word) => word & 255);
}

/** Copies a picture and its mask into the module's memory. */
export function loadSource(core, object) {
    const { picture, mask, own } = readSource(object);
    const { width, height } = picture;
    const pixels = core.outside(picture.data), levels = core.outside(mask);
    const loaded = { picture: null, mask: null, own };
    try {
        loaded.picture = core.newImage(width, height, 4);
        loaded.mask = core.newImage(width, height, 1);
        alphaFirst(wordsOf(pixels), wordsIn(core, loaded.picture));
        bytesIn(core, loaded.mask).set(levels);
        return loaded;
    } catch (error) {
        freeSource(core, loaded);
        throw error;
    }
}

export function freeSource(core, source) {
    core.freeImage(source.picture);
    core.freeImage(source.mask);
}

export function checkObjectOptions(options) {
    const { fit = true, grow = 0 } = options ?? {};
    return { fit: Boolean(fit), grow: checkNumber("grow", grow, -16, 16) };
}

/** Where the object lies in its source, with what cleaning it needs around. */
export function findBox(core, source) {
    const box = core.cleanBox(source.picture, source.own ? null : source.mask);
    if (box.width === 0) fail("argument", "there is no object: the mask or alpha is 0 everywhere");
    return box;
}

/** The cleaned object, as large as the box. */
export function cleanSource(core, source, options, box) {
    const image = core.newImage(box.width, box.height, 4);
    try {
        const findings = core.clean(source.picture, source.own ? null : source.mask, options, box,
            image);
        const alpha = alphaOf(core, image);
        const softOutline = findOutline(alpha, box.width, box.height, 1);
        if (softOutline === null) fail("argument", "nothing is left of the object");
        return { image, findings, softOutline, alpha };
    } catch (error) {
        core.freeImage(image);
        throw error;
    }
}

export class PreparedObject {
    #core;
    #prepared;
    #plain = null;

    constructor(core, object, options) {
        const checked = checkObjectOptions(options);
        this.#core = core;
        this.source = loadSource(core, object);
        try {
            this.box = findBox(core, this.source);
            const clean = cleanSource(core, this.source, checked, this.box);
            this.findings = clean.findings;
            this.#prepared = { image: clean.image, outline: clean.softOutline };
            this.outline = findOutline(clean.alpha, this.box.width, this.box.height, 128)
                ?? clean.softOutline;
        } catch (error) {
            freeSource(core, this.source);
            throw error;
        }
        /** The point of its images that stands where the object is placed. */
        this.middle = middleOf(this.outline);
    }

    get info() {
        const { outline, box } = this;
        return {
            width: outline.width,
            height: outline.height,
            left: box.left + outline.left,
            top: box.top + outline.top,
            ...this.findings,
        };
    }

    /** Image and soft outline in a mode: the cleaned object, or its box as the mask marks it. */
    shape(mode) {
        if (mode !== "plain") return this.#prepared;
        this.#plain ??= this.#makePlain();
        return this.#plain;
    }

    #makePlain() {
        const core = this.#core, { box } = this, { mask, picture } = this.source;
        const image = cutImage(core, picture, box);
        const words = wordsIn(core, image), values = bytesIn(core, mask);
        for (let y = 0, i = 0; y < box.height; y++) {
            const row = (box.top + y) * mask.width + box.left;
            for (let x = 0; x < box.width; x++, i++) {
                words[i] = (words[i] & 0xffffff00) | values[row + x];
            }
        }
        const outline = findOutline(alphaOf(core, image), box.width, box.height, 1);
        return { image, outline };
    }

    /** What is around the object, opaque, up to `room` pixels beyond `box`, and where that begins. */
    around(room) {
        const { box } = this, { picture } = this.source;
        const left = Math.max(box.left - room, 0), top = Math.max(box.top - room, 0);
        const right = Math.min(box.left + box.width + room, picture.width);
        const bottom = Math.min(box.top + box.height + room, picture.height);
        const image = cutImage(this.#core, picture,
            { left, top, width: right - left, height: bottom - top });
        const words = wordsIn(this.#core, image);
        for (let i = 0; i < words.length; i++) words[i] |= 255;
        return { image, left: left - box.left, top: top - box.top };
    }

    free() {
        const core = this.#core;
        core.freeImage(this.#plain?.image);
        core.freeImage(this.#prepared.image);
        freeSource(core, this.source);
    }
}
