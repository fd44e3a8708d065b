// SPDX-License-Identifier: Apache-2.0
// From files to pixels, on the page and in a worker.

/** An error that the page says in words: see app/messages.js. */
export class PictureError extends Error {
    constructor(code, message) {
        super(message ?? code);
        this.code = code;
    }
}

/** A canvas of its own for pixels that nobody sees. */
export function scratchCanvas(width, height) {
    if (typeof OffscreenCanvas !== "undefined") return new OffscreenCanvas(width, height);
    return Object.assign(document.createElement("canvas"), { width, height });
}

/** Decodes a file; close() the bitmap when done. Error "unreadable". */
export async function decode(file) {
    try {
        return await createImageBitmap(file, { imageOrientation: "from-image" }).catch((error) => {
            if (error instanceof TypeError) return createImageBitmap(file); // knows no "from-image"
            throw error;
        });
    } catch {
        throw new PictureError("unreadable");
    }
}

/** The scale, 1 at most, at which a picture has no more than so many pixels. */
export const scaleWithin = (width, height, most) => Math.min(1, Math.sqrt(most / (width * height)));

/** A side at that scale, rounded down so that the picture stays within the limit. */
export const scaledSide = (side, scale) => Math.max(1, Math.floor(side * scale));

/** The pixels of anything that can be drawn, at that size. Error "too-large". */
export function pixelsOf(drawable, width, height) {
    const canvas = scratchCanvas(width, height);
    const context = canvas.getContext("2d", { willReadFrequently: true });
    if (!context) throw new PictureError("too-large");
    context.imageSmoothingQuality = "high";
    try {
        context.drawImage(drawable, 0, 0, width, height);
        return context.getImageData(0, 0, width, height);
    } catch {
        throw new PictureError("too-large");
    } finally {
        canvas.width = canvas.height = 0;
    }
}

/** The pixels of a file, at that size. Errors "unreadable" and "too-large". */
export async function pixelsOfFile(file, width, height) {
    const bitmap = await decode(file);
    try {
        return pixelsOf(bitmap, width, height);
    } finally {
        bitmap.close();
    }
}

/** Whether every pixel is opaque. */
export function isOpaque({ data }) {
    for (let at = 3; at < data.length; at += 4) if (data[at] !== 255) return false;
    return true;
}

/** A small picture, fitted into a square, for a list. */
export function thumbnail(drawable, width, height, side) {
    const scale = Math.min(1, side / Math.max(width, height));
    const [w, h] = [width, height].map((length) => Math.max(1, Math.round(length * scale)));
    return pixelsOf(drawable, w, h);
}
