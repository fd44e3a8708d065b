// SPDX-License-Identifier: Apache-2.0
// Where an object stands: { x, y, zoom, angle } in pixels of the photo at full size, the scale of
// the object at full size, and degrees counter-clockwise. x and y are whole pixels, which blend
// fastest. A zoom has six digits, so that the smallest moves of a wheel add up at any size; an
// angle is kept in tenths.

export const SMALLEST_ZOOM = 0.01;
export const LARGEST_ZOOM = 10;

/** Share of the photo by which an object may leave it: enough to see that it has left. */
const BEYOND = 0.015;

const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

/** Degrees in -180 .. 180, exclusive of -180. */
export function wrapAngle(degrees) {
    const turned = ((degrees % 360) + 360) % 360;
    return turned > 180 ? turned - 360 : turned || 0; // no -0
}

/** Width and height of the upright box around a scaled and turned object. */
export function spread(object, placement) {
    const turn = (placement.angle * Math.PI) / 180;
    const [sine, cosine] = [Math.abs(Math.sin(turn)), Math.abs(Math.cos(turn))];
    return {
        width: placement.zoom * (object.width * cosine + object.height * sine),
        height: placement.zoom * (object.width * sine + object.height * cosine),
    };
}

/** The placement in its steps and ranges, so that the object cannot get lost outside. */
export function settle(placement, photo, object) {
    const zoom = clamp(Number(placement.zoom.toPrecision(6)), SMALLEST_ZOOM, LARGEST_ZOOM);
    const angle = wrapAngle(Math.round(placement.angle * 10) / 10);
    const { width, height } = spread(object, { zoom, angle });
    const room = BEYOND * Math.max(photo.width, photo.height);
    const beyond = { x: width / 2 + room, y: height / 2 + room };
    return {
        x: Math.round(clamp(placement.x, -beyond.x, photo.width + beyond.x)),
        y: Math.round(clamp(placement.y, -beyond.y, photo.height + beyond.y)),
        zoom,
        angle,
    };
}

/** A first place for an object: the middle, at two fifths of the photo, never enlarged. */
export function firstPlacement(photo, object) {
    const fit = Math.min(photo.width / object.width, photo.height / object.height);
    const zoom = Math.min(1, 0.4 * fit);
    return settle({ x: photo.width / 2, y: photo.height / 2, zoom, angle: 0 }, photo, object);
}

/** The placement that two fingers make which went from `from` to `to`, pairs of points. */
export function pinch(placement, from, to) {
    const [before, after] = [from, to].map(([a, b]) => ({
        middle: { x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 },
        length: Math.max(1, Math.hypot(b.x - a.x, b.y - a.y)),
        turn: Math.atan2(b.y - a.y, b.x - a.x),
    }));
    const factor = after.length / before.length;
    const turn = after.turn - before.turn;
    const arm = { x: placement.x - before.middle.x, y: placement.y - before.middle.y };
    return {
        x: after.middle.x + factor * (arm.x * Math.cos(turn) - arm.y * Math.sin(turn)),
        y: after.middle.y + factor * (arm.x * Math.sin(turn) + arm.y * Math.cos(turn)),
        zoom: placement.zoom * factor,
        angle: placement.angle - (turn * 180) / Math.PI,
    };
}

/** Sides of the photo that a box crosses, in words. */
export function crossedSides(box, photo) {
    const sides = [];
    if (box.left < 0) sides.push("left");
    if (box.left + box.width > photo.width) sides.push("right");
    if (box.top < 0) sides.push("top");
    if (box.top + box.height > photo.height) sides.push("bottom");
    return sides;
}

const zoomRange = Math.log(LARGEST_ZOOM / SMALLEST_ZOOM);

/** A zoom as a slider's position, 0 .. 1: equal steps are equal factors. */
export const zoomToSlider = (zoom) => Math.log(zoom / SMALLEST_ZOOM) / zoomRange;

/** The way back, with a notch at the object's own size. */
export function sliderToZoom(position) {
    const zoom = SMALLEST_ZOOM * Math.exp(position * zoomRange);
    return Math.abs(zoom - 1) < 0.004 ? 1 : zoom;
}
