// SPDX-License-Identifier: Apache-2.0
// The library's bare blend, of frames that all have the photo's size.
import { wordsIn } from "./object.js";
import { findOutline } from "./outline.js";

/** The numbers that the library takes. */
export function roundPlace(place) {
    return { ...place, x: Math.round(place.x), y: Math.round(place.y),
        zoom: Math.fround(place.zoom) };
}

function fillIcon(core, picture, icon, offset) {
    const from = wordsIn(core, picture), to = wordsIn(core, icon);
    const begin = Math.max(offset.x, 0), end = Math.min(offset.x + picture.width, icon.width);
    for (let y = 0; y < icon.height; y++) {
        const source = Math.min(Math.max(y - offset.y, 0), picture.height - 1) * picture.width;
        const row = y * icon.width;
        // Beyond the picture its edge is repeated.
        to.fill(from[source], row, row + begin);
        to.set(from.subarray(source + begin - offset.x, source + end - offset.x), row + begin);
        to.fill(from[source + picture.width - 1], row + end, row + icon.width);
    }
}

function fillMask(core, mask, frame, box, offset) {
    const { bytes } = core;
    bytes.fill(0, frame.data, frame.data + frame.width * frame.height);
    for (let y = box.top; y < box.top + box.height; y++) {
        const from = mask.data + y * mask.width + box.left;
        bytes.copyWithin(frame.data + (y + offset.y) * frame.width + box.left + offset.x, from,
            from + box.width);
    }
}

/**
 * Icon and mask of the photo's size: the object's own, or the object in the middle of new ones,
 * which are `owned`. Null where it is too large for that.
 */
export function frameObject(core, source, width, height) {
    const { picture, mask } = source;
    if (picture.width === width && picture.height === height) {
        return { icon: picture, mask, owned: false };
    }
    const values = core.bytes.subarray(mask.data, mask.data + mask.width * mask.height);
    const box = findOutline(values, mask.width, mask.height, 1);
    if (box.width > width || box.height > height) return null;
    const offset = { x: Math.floor((width - box.width) / 2) - box.left,
        y: Math.floor((height - box.height) / 2) - box.top };
    const icon = core.newImage(width, height, 4);
    let frame;
    try {
        frame = core.newImage(width, height, 1);
    } catch (error) {
        core.freeImage(icon);
        throw error;
    }
    fillIcon(core, picture, icon, offset);
    fillMask(core, mask, frame, box, offset);
    return { icon, mask: frame, owned: true };
}

export function freeFrames(core, frames) {
    if (!frames?.owned) return;
    core.freeImage(frames.icon);
    core.freeImage(frames.mask);
}
