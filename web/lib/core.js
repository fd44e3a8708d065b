// SPDX-License-Identifier: Apache-2.0
// The module's functions with JavaScript values. An image is { width, height, data }, with `data`
// an address in the module's memory; colours have alpha first, as in imageblend_prepare.h.
//
// Any call may grow the memory, which detaches every view of it: `bytes` and `words` are made anew
// then, and are not kept across calls.
import { fail } from "./errors.js";

// Where the records of a call lie in the block that is allocated for them.
const RECORD_BYTES = 512;
const IMAGE_BYTES = 16;
const SOURCE = 128, OPTIONS = 144, BOX = 160, FINDINGS = 176, LAYER = 200, FRAMES = 224, TURN = 288;

const EDGES = ["hard", "outline", "soft"];
const FITS = ["none", "unclear", "beyond", "kept", "moved"];

export class Core {
    #exports;
    #bytes;
    #words;
    #records;

    constructor(instance) {
        this.#exports = instance.exports;
        this.#exports._initialize();
        this.#records = this.alloc(RECORD_BYTES);
    }

    get size() {
        return this.#exports.memory.buffer.byteLength;
    }

    get bytes() {
        if (this.#bytes?.buffer !== this.#exports.memory.buffer) {
            this.#bytes = new Uint8Array(this.#exports.memory.buffer);
        }
        return this.#bytes;
    }

    get words() {
        if (this.#words?.buffer !== this.#exports.memory.buffer) {
            this.#words = new Uint32Array(this.#exports.memory.buffer);
        }
        return this.#words;
    }

    /** A caller's data, copied if they are a view of this memory, which may move or be freed. */
    outside(data) {
        return data.buffer === this.#exports.memory.buffer ? new Uint8Array(data) : data;
    }

    /** An address that is a multiple of 16. */
    alloc(bytes) {
        // More than the module can address must not wrap around.
        const address = bytes < 2 ** 32 - 16 ? this.#exports.malloc(bytes) >>> 0 : 0;
        if (address === 0) fail("memory", `there is no memory for ${bytes} bytes`);
        return address;
    }

    free(address) {
        if (address) this.#exports.free(address);
    }

    newImage(width, height, pixelBytes) {
        return { width, height, data: this.alloc(width * height * pixelBytes) };
    }

    freeImage(image) {
        if (image) this.free(image.data);
    }

    // Record number `slot` of an image; 0 for none.
    #image(slot, image) {
        if (!image) return 0;
        const address = this.#records + slot * IMAGE_BYTES;
        this.words.set([image.width, image.height, image.data], address / 4);
        return address;
    }

    #ints(offset, values) {
        new Int32Array(this.#exports.memory.buffer).set(values, (this.#records + offset) / 4);
        return this.#records + offset;
    }

    #readInts(offset, count) {
        return new Int32Array(this.#exports.memory.buffer, this.#records + offset, count);
    }

    #readBox(offset) {
        const [left, top, width, height] = this.#readInts(offset, 4);
        return { left, top, width, height };
    }

    #boxRecord(box) {
        return this.#ints(BOX, [box.left, box.top, box.width, box.height]);
    }

    #source(picture, mask) {
        return this.#ints(SOURCE, [this.#image(0, picture), this.#image(1, mask)]);
    }

    #layer(layer) {
        return this.#ints(LAYER, [this.#image(0, layer.object), this.#image(1, layer.surroundings),
            layer.reach, layer.left, layer.top]);
    }

    /** Of the box around what is not 0. Some without any have a size all the same. */
    iconSize(mask) {
        const sizes = this.#records + BOX;
        this.#exports.vorn_get_icon_size(this.#image(0, mask), sizes, sizes + 4);
        const [width, height] = this.#readInts(BOX, 2);
        return { width, height };
    }

    /** `icon` has the size that iconSize gives. */
    createIcon(source, mask, icon) {
        const status = this.#exports.vorn_create_rgb_icon(this.#image(0, source),
            this.#image(1, mask), this.#image(2, icon), 1);
        if (status !== 0) fail("memory", "there is no memory to cut the object out");
    }

    /** 0, 1 or -1. */
    verify(mask, place) {
        return this.#exports.vorn_verify_icon_pos(mask.data, mask.width, mask.height, 0, 0,
            place.x, place.y, place.zoom, place.angle);
    }

    /** The rectangle that imageBlending writes; null where it refuses. */
    blendBox(mask, place) {
        const status = this.#exports.imageblend_web_box(this.#image(0, mask), place.x, place.y,
            place.zoom, place.angle, this.#records + BOX);
        return status === 0 ? this.#readBox(BOX) : null;
    }

    /** Only after blendBox: the memory of a refused call is lost. */
    imageBlending(icon, destination, mask, place) {
        const into = this.#image(1, destination);
        const status = this.#exports.vorn_imageBlending(this.#image(0, icon), into,
            this.#image(2, mask), into, 0, 0, place.x, place.y, place.zoom, place.angle);
        if (status !== 0) fail("memory", "there is no memory for the blend");
    }

    /** Its width is 0 when there is no object. Without a mask, alpha is that. */
    cleanBox(picture, mask) {
        this.#exports.imageblend_clean_box(this.#source(picture, mask), this.#records + BOX);
        return this.#readBox(BOX);
    }

    clean(picture, mask, options, box, object) {
        const record = this.#ints(OPTIONS, [options.fit ? 1 : 0]);
        new Float32Array(this.#exports.memory.buffer, record + 4, 1)[0] = options.grow;
        const status = this.#exports.imageblend_clean(this.#source(picture, mask), record,
            this.#boxRecord(box), this.#image(2, object), this.#records + FINDINGS);
        if (status !== 0) fail("memory", "there is no memory to prepare the object");
        const [edge, premultiplied, surroundings, fit] = this.#readInts(FINDINGS, 4);
        const [moved] = new Float32Array(this.#exports.memory.buffer,
            this.#records + FINDINGS + 16, 1);
        return {
            edge: EDGES[edge],
            fit: FITS[fit],
            moved,
            premultiplied: premultiplied !== 0,
            surroundings: surroundings !== 0,
        };
    }

    /** The part of a destination that a paste works on, which it may exceed; null if none. */
    place(layer, width, height) {
        const status = this.#exports.imageblend_place(this.#layer(layer), width, height,
            this.#records + FRAMES);
        if (status !== 0) fail("memory", "the object is too large");
        const box = this.#readBox(FRAMES);
        return box.width > 0 ? box : null;
    }

    paste(layer, picture) {
        const status = this.#exports.imageblend_paste(this.#layer(layer), this.#image(2, picture),
            0);
        if (status !== 0) fail("memory", "there is no memory for the blend");
    }

    /** The picture scaled and turned, as far as it lies in a window of another one. */
    turned(picture, turn, window) {
        const out = this.newImage(window.width, window.height, 4);
        const record = this.#records + TURN;
        new Float64Array(this.#exports.memory.buffer, record, 6).set([turn.from.x, turn.from.y,
            turn.to.x, turn.to.y, turn.zoom, turn.angle]);
        const status = this.#exports.imageblend_web_turned(this.#image(0, picture), record,
            this.#boxRecord(window), this.#image(1, out));
        if (status === 0) return out;
        this.freeImage(out);
        return fail("memory", "there is no memory to scale and turn the object");
    }
}
