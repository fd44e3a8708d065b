// SPDX-License-Identifier: Apache-2.0
// The object as it is laid over a photo: scaled, turned, and in its place.
import { checkNumber, fail } from "./errors.js";
import { cutImage } from "./object.js";
import { findReach } from "./outline.js";

const WIDEST_SURROUNDINGS = 32, LARGEST_REACH = 256, AUTO = -1;
// Positions beyond these would leave the module's integers.
const FARTHEST = 1e9, LARGEST_ROOM = 1e6;
// What lies farther than this beyond the photo and its surroundings changes nothing in the photo.
const WIDEST_BORDER = 64;

export function checkPlacement(placement) {
    const { x, y, zoom = 1, angle = 0 } = placement ?? {};
    checkNumber("zoom", zoom);
    const factor = Math.fround(zoom);
    if (!(factor > 0 && factor < Infinity)) {
        fail("argument", `zoom is ${zoom}, must be above 0 and below 2^128`);
    }
    return {
        x: checkNumber("x", x, -FARTHEST, FARTHEST),
        y: checkNumber("y", y, -FARTHEST, FARTHEST),
        zoom,
        angle: Math.fround(checkNumber("angle", angle) % 360),
    };
}

export function checkReach(surroundings = 0) {
    if (surroundings === "auto") return AUTO;
    return Math.round(checkNumber("surroundings", surroundings, 0, LARGEST_REACH));
}

const widestOf = (reach) => (reach === AUTO ? WIDEST_SURROUNDINGS : reach);

/** Half-open, in the photo. */
export function extentOf(outline, middle, place) {
    const reach = findReach(outline, middle, place.angle);
    return {
        left: place.x - reach.left * place.zoom,
        top: place.y - reach.up * place.zoom,
        right: place.x + reach.right * place.zoom,
        bottom: place.y + reach.down * place.zoom,
    };
}

/** The point where the middle of the object comes to stand: unscaled, its pixels stay whole. */
export function settle(object, place) {
    if (place.zoom !== 1 || place.angle !== 0) return place;
    const { x, y } = object.middle;
    return { ...place, x: x + Math.floor(place.x - x), y: y + Math.floor(place.y - y) };
}

function windowAround(extent, room) {
    const left = Math.floor(extent.left) - room, top = Math.floor(extent.top) - room;
    return { left, top, width: Math.ceil(extent.right) + room - left,
        height: Math.ceil(extent.bottom) + room - top };
}

// What of it lies in a photo whose corner is at -corner, with a border around.
function clampWindow(window, photo, corner, border) {
    const left = Math.max(window.left, -border - corner.x);
    const top = Math.max(window.top, -border - corner.y);
    const right = Math.min(window.left + window.width, photo.width + border - corner.x);
    const bottom = Math.min(window.top + window.height, photo.height + border - corner.y);
    return { left, top, width: right - left, height: bottom - top };
}

function turnImage(core, image, from, place, window) {
    const turn = { from, to: place, zoom: place.zoom, angle: place.angle };
    return core.turned(image, turn, window);
}

// What `make` gives for the picture around the object.
function withAround(core, object, room, make) {
    const around = object.around(room);
    try {
        return make(around);
    } finally {
        core.freeImage(around.image);
    }
}

function turnedSurroundings(core, object, place, window, reach) {
    const room = Math.min(Math.ceil(2 * widestOf(reach) / place.zoom) + 4, LARGEST_ROOM);
    return withAround(core, object, room, ({ image, left, top }) => {
        const from = { x: object.middle.x - left, y: object.middle.y - top };
        return turnImage(core, image, from, place, window);
    });
}

// Neither scaled nor turned.
function plainSurroundings(core, object, wide, room) {
    return withAround(core, object, room, ({ image, left, top }) => cutImage(core, image,
        { ...wide, left: wide.left - left, top: wide.top - top }));
}

function addSurroundings(core, layer, make) {
    try {
        return { ...layer, surroundings: make() };
    } catch (error) {
        core.freeImage(layer.object);
        throw error;
    }
}

function turnedLayer(core, object, image, place, window, reach) {
    const layer = { object: turnImage(core, image, object.middle, place, window),
        surroundings: null, reach, left: window.left, top: window.top };
    return reach === 0 ? layer : addSurroundings(core, layer,
        () => turnedSurroundings(core, object, place, window, reach));
}

function wideLayer(core, object, image, place, room, reach) {
    const { width, height } = object.box;
    const wide = { left: -room, top: -room, width: width + 2 * room, height: height + 2 * room };
    const layer = { object: cutImage(core, image, wide), surroundings: null, reach,
        left: place.x - object.middle.x - room, top: place.y - object.middle.y - room };
    return addSurroundings(core, layer, () => plainSurroundings(core, object, wide, room));
}

/**
 * Layers of one object. The last one is kept: as long as zoom, angle and the fractions of the place
 * stay, it is only moved.
 */
export class Layers {
    #core;
    #key = "";
    #layer = null;
    #borrowed = false;

    constructor(core) {
        this.#core = core;
    }

    forget() {
        if (this.#layer && !this.#borrowed) {
            this.#core.freeImage(this.#layer.object);
            this.#core.freeImage(this.#layer.surroundings);
        }
        this.#layer = null;
        this.#key = "";
    }

    /**
     * At a settled place in a photo, good until the next call, with the box of what it can change;
     * null if it is outside.
     */
    find(object, photo, place, options) {
        const reach =
            options.mode === "prepared" && object.findings.surroundings ? options.reach : 0;
        // Surroundings fade towards the end of their picture too, which must not be the window's.
        const widest = widestOf(reach), enlarged = Math.ceil(place.zoom / 2);
        // An enlarged pixel at the object's edge reaches beyond its outline.
        const room = 2 * widest + 2 + enlarged;
        const border = 2 * widest + 2 + Math.min(enlarged, WIDEST_BORDER);
        const whole = { x: Math.floor(place.x), y: Math.floor(place.y) };
        const near = { ...place, x: place.x - whole.x, y: place.y - whole.y };
        const { image, outline } = object.shape(options.mode);
        let window = windowAround(extentOf(outline, object.middle, near), room);
        let key = [options.mode, reach, place.zoom, place.angle, near.x, near.y].join();
        if (window.width * window.height > 4 * photo.width * photo.height) {
            // Of a very large object only what the photo shows.
            window = clampWindow(window, photo, whole, border);
            if (window.width < 1 || window.height < 1) return null;
            key += [",", whole.x, whole.y, photo.width, photo.height].join();
        }
        if (key !== this.#key) {
            this.forget();
            this.#layer = this.#make(object, image, near, window, room, reach);
            this.#key = key;
        }
        const layer = this.#layer;
        return { ...layer, left: layer.left + whole.x, top: layer.top + whole.y,
            changes: { left: window.left + whole.x + widest, top: window.top + whole.y + widest,
                width: window.width - 2 * widest, height: window.height - 2 * widest } };
    }

    #make(object, image, place, window, room, reach) {
        this.#borrowed = false;
        if (place.zoom !== 1 || place.angle !== 0) {
            return turnedLayer(this.#core, object, image, place, window, reach);
        }
        if (reach !== 0) return wideLayer(this.#core, object, image, place, room, reach);
        this.#borrowed = true;
        return { object: image, surroundings: null, reach: 0, left: place.x - object.middle.x,
            top: place.y - object.middle.y };
    }
}
