// SPDX-License-Identifier: Apache-2.0
// What an object's mask is already, as a canvas to paint on.

import { isOpaque, pixelsOfFile, scratchCanvas } from "../engine/pictures.js";

const COLOUR = [255, 0, 68];

/** One byte a pixel: a picture's alpha if any pixel is not opaque, else its green. */
function maskOf(pixels, ofPicture) {
    const opaque = isOpaque(pixels);
    if (opaque && ofPicture) return null;
    return (at) => pixels.data[at * 4 + (opaque ? 1 : 3)];
}

/** A canvas of that size with the mask of { file, mask } as alpha; null when there is none. */
export async function maskBase({ file, mask }, width, height) {
    let valueAt;
    if (mask?.data && mask.width === width && mask.height === height) {
        valueAt = (at) => mask.data[at];
    } else {
        valueAt = maskOf(await pixelsOfFile(mask ?? file, width, height), !mask);
    }
    if (!valueAt) return null;
    const image = new ImageData(width, height);
    for (let at = 0; at < width * height; at++) image.data.set([...COLOUR, valueAt(at)], at * 4);
    const canvas = scratchCanvas(width, height);
    canvas.getContext("2d").putImageData(image, 0, 0);
    return canvas;
}
