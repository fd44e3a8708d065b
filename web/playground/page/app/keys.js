// SPDX-License-Identifier: Apache-2.0
// The keys of the object when it has the focus, and those of the page.

const FINE = 1;
const COARSE = 10;
const ZOOM_STEP = 1.02;

const arrows = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
const sizes = { "+": 1, "=": 1, "-": -1, "_": -1 };
const turns = { ",": 1, "<": 1, "[": 1, ".": -1, ">": -1, "]": -1 };

/** The placement that a key makes of one, or null for a key that means nothing here. */
export function placementByKey(placement, { key, shiftKey }) {
    const steps = shiftKey ? COARSE : FINE;
    if (key in arrows) {
        const [x, y] = arrows[key];
        return { ...placement, x: placement.x + x * steps, y: placement.y + y * steps };
    }
    if (key in sizes) return { ...placement, zoom: placement.zoom * ZOOM_STEP ** sizes[key] };
    if (key in turns) return { ...placement, angle: placement.angle + turns[key] * steps };
    return null;
}

/** "undo", "redo" or null. */
export function stepByKey({ key, ctrlKey, metaKey, altKey, shiftKey }) {
    if (!(ctrlKey || metaKey) || altKey) return null;
    const letter = key.toLowerCase();
    if (letter === "z") return shiftKey ? "redo" : "undo";
    return letter === "y" && !shiftKey ? "redo" : null;
}
