// SPDX-License-Identifier: Apache-2.0
// The pictures, the blends and the canvas that shows them. Runs in a worker, or on the page where
// a worker has no canvas. Positions, zooms and sizes are those of the pictures at full size; what
// is shown is scaled where they are larger than the preview.
//
// A photo is { file }; an object is { file, mask }, its mask null (the picture's own alpha), a
// file, or { data, width, height } with one byte a pixel.

import { Blender } from "../imageblend/index.js";
import { PictureError, decode, isOpaque, pixelsOf, pixelsOfFile, scaleWithin, scaledSide,
    scratchCanvas, thumbnail } from "./pictures.js";

/** Pictures above this are scaled for the preview. */
export const PREVIEW_PIXELS = 12e6;
const THUMBNAIL_SIDE = 112;

/** A file's pixels at the scale that holds it within `most`, with its full size. */
async function load(file, most) {
    const bitmap = await decode(file);
    try {
        const { width, height } = bitmap;
        const scale = scaleWithin(width, height, most);
        const pixels = pixelsOf(bitmap, scaledSide(width, scale), scaledSide(height, scale));
        return { pixels, width, height, scale: pixels.width / width,
            thumbnail: thumbnail(bitmap, width, height, THUMBNAIL_SIDE) };
    } finally {
        bitmap.close();
    }
}

/** A mask for a picture of that size: a picture from a file, or what was painted, scaled. */
async function loadMask(mask, width, height) {
    if (mask instanceof Blob) return pixelsOfFile(mask, width, height);
    if (mask.width === width && mask.height === height) return mask;
    const image = new ImageData(mask.width, mask.height);
    mask.data.forEach((value, at) => (image.data[at * 4 + 3] = value));
    const canvas = scratchCanvas(mask.width, mask.height);
    canvas.getContext("2d").putImageData(image, 0, 0);
    const { data } = pixelsOf(canvas, width, height);
    const alpha = new Uint8Array(width * height);
    for (let at = 0; at < alpha.length; at++) alpha[at] = data[at * 4 + 3];
    return { data: alpha, width, height };
}

async function loadObject({ file, mask }, most) {
    const loaded = await load(file, most);
    const { pixels } = loaded;
    if (!mask && isOpaque(pixels)) throw new PictureError("needs-mask");
    const source = mask
        ? { picture: pixels, mask: await loadMask(mask, pixels.width, pixels.height) }
        : pixels;
    return { ...loaded, source };
}

/** A placement for a photo and an object at those scales. x and y stay whole. */
function scaled({ x, y, zoom, angle }, photoScale, objectScale) {
    if (photoScale === 1 && objectScale === 1) return { x, y, zoom, angle };
    return {
        x: Math.round(x * photoScale),
        y: Math.round(y * photoScale),
        zoom: (zoom * photoScale) / objectScale,
        angle,
    };
}

export class Engine {
    constructor(canvas) {
        this.canvas = canvas;
        this.context = canvas.getContext("2d");
        this.photo = null;
        this.object = null;
    }

    async open() {
        this.blender = await Blender.create();
    }

    async setPhoto({ file }) {
        const photo = await load(file, PREVIEW_PIXELS);
        this.blender.setPhoto(photo.pixels);
        this.photo = { scale: photo.scale };
        const { width, height, thumbnail } = photo;
        return { width, height, thumbnail, reduced: photo.scale < 1 };
    }

    async setObject({ file, mask }) {
        const object = await loadObject({ file, mask }, PREVIEW_PIXELS);
        const info = this.#prepare(object.source);
        this.object = { scale: object.scale };
        return {
            width: info.width / object.scale,
            height: info.height / object.scale,
            surroundings: info.surroundings,
            thumbnail: object.thumbnail,
        };
    }

    #prepare(source) {
        try {
            return this.blender.setObject(source);
        } catch (error) {
            if (error.code === "argument") throw new PictureError("empty-mask", error.message);
            throw error;
        }
    }

    /** Draws the photo with the object, prepared or as a plain paste, and tells how it stands. */
    show(scene) {
        const { placement, surroundings, plain } = scene;
        this.shown = scene;
        const start = performance.now();
        const { scale } = this.photo;
        const place = scaled(placement, scale, this.object.scale);
        const options = plain
            ? { mode: "plain" }
            : { mode: "prepared", surroundings: Math.round(surroundings * scale) };
        const verdict = this.blender.verify(place, options);
        const box = this.blender.bounds(place);
        const picture = verdict === "refused"
            ? this.blender.clear()
            : this.blender.blend(place, options);
        this.#draw(picture);
        return {
            verdict,
            box: { left: box.left / scale, top: box.top / scale,
                width: box.width / scale, height: box.height / scale },
            milliseconds: performance.now() - start,
        };
    }

    #draw(picture) {
        const { canvas } = this;
        if (canvas.width !== picture.width || canvas.height !== picture.height) {
            [canvas.width, canvas.height] = [picture.width, picture.height];
        }
        const { left, top, width, height } = this.blender.dirty; // the whole of a new photo
        if (width > 0) this.context.putImageData(picture, 0, 0, left, top, width, height);
    }

    /** The photo alone, at the size of the preview. */
    before() {
        const { data, width, height } = this.blender.clear();
        const photo = new ImageData(new Uint8ClampedArray(data), width, height);
        this.show(this.shown); // what is dirty counts from the picture on the canvas
        return createImageBitmap(photo);
    }

    /** The photo with the object at full size as a file of that type. */
    async download({ photo, object, placement, surroundings, type }) {
        const blender = await Blender.create();
        try {
            const full = await load(photo.file, Infinity);
            blender.setPhoto(full.pixels);
            blender.setObject((await loadObject(object, Infinity)).source);
            const picture = blender.blend(placement, { surroundings });
            const canvas = scratchCanvas(picture.width, picture.height);
            canvas.getContext("2d").putImageData(picture, 0, 0);
            return await encode(canvas, type);
        } finally {
            blender.dispose();
        }
    }
}

async function encode(canvas, type) {
    const quality = 0.95;
    const file = canvas.convertToBlob
        ? await canvas.convertToBlob({ type, quality })
        : await new Promise((done) => canvas.toBlob(done, type, quality));
    if (!file) throw new PictureError("too-large");
    return file;
}
