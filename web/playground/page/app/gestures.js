// SPDX-License-Identifier: Apache-2.0
// Pointers, wheel and fingers on the picture. Says what they want by
//   change(placement, kind)   the object goes there; changes of one kind may be one step
//   end()                     the gesture is over
//   select(yes)               the object was touched, or the photo beside it

import { pinch } from "./placement.js";

/** Screen pixels: an object smaller than this can still be taken hold of. */
const SMALLEST_TARGET = 44;
/** Degrees that two fingers must turn before the object does. */
const TURN_THRESHOLD = 7;
const WHEEL_FACTOR_PER_PIXEL = 1.0015;

export class Gestures {
    /** `current` returns { placement, photo, object } of the present, or null. */
    constructor({ picture, handle, current, change, end, select }) {
        Object.assign(this, { picture, handle, current, change, end, select });
        this.pointers = new Map();
        this.gesture = null;
        picture.addEventListener("pointerdown", (event) => this.#down(event));
        picture.addEventListener("pointermove", (event) => this.#move(event));
        picture.addEventListener("pointerup", (event) => this.#up(event));
        picture.addEventListener("pointercancel", (event) => this.#up(event));
        picture.addEventListener("wheel", (event) => this.#wheel(event), { passive: false });
    }

    /** Where an event is in the photo's pixels. */
    #point(event) {
        const box = this.picture.getBoundingClientRect();
        const scale = this.current().photo.width / box.width;
        const [x, y] = [event.clientX - box.left, event.clientY - box.top];
        return { x: x * scale, y: y * scale, scale };
    }

    /** Whether a point is on the object, turned as it is. */
    #hits(point) {
        const { placement, object } = this.current();
        const turn = (placement.angle * Math.PI) / 180;
        const [x, y] = [point.x - placement.x, point.y - placement.y];
        const across = Math.abs(x * Math.cos(turn) - y * Math.sin(turn));
        const along = Math.abs(x * Math.sin(turn) + y * Math.cos(turn));
        const least = (SMALLEST_TARGET * point.scale) / 2;
        return across <= Math.max(least, (object.width * placement.zoom) / 2) &&
            along <= Math.max(least, (object.height * placement.zoom) / 2);
    }

    #down(event) {
        if (!this.current() || event.target.closest("input") || event.button > 0) return;
        const point = this.#point(event);
        const onHandle = event.target === this.handle;
        if (this.pointers.size === 0 && !onHandle && !this.#hits(point)) {
            this.select(false);
            if (event.pointerType === "mouse") return;
        } else {
            this.select(true);
        }
        event.preventDefault();
        this.picture.setPointerCapture(event.pointerId);
        this.pointers.set(event.pointerId, point);
        this.#begin(onHandle);
    }

    /** A gesture starts anew whenever a finger comes or goes. */
    #begin(onHandle = false) {
        const points = [...this.pointers.values()].map((point) => ({ ...point }));
        const { placement } = this.current();
        if (points.length === 2) {
            this.gesture = { kind: "pinch", placement, points, turning: false };
        } else if (points.length === 1 && (onHandle || this.gesture || this.#hits(points[0]))) {
            this.gesture = { kind: onHandle ? "turn" : "drag", placement, points };
        } else {
            this.gesture = null;
        }
    }

    #move(event) {
        if (!this.pointers.has(event.pointerId) || !this.current()) return;
        this.pointers.set(event.pointerId, this.#point(event));
        if (!this.gesture) return;
        const points = [...this.pointers.values()];
        this.change(this[`${this.gesture.kind}To`](points, event), "drag");
    }

    dragTo([point]) {
        const { placement, points: [start] } = this.gesture;
        const [x, y] = [point.x - start.x, point.y - start.y];
        return { ...placement, x: placement.x + x, y: placement.y + y };
    }

    turnTo([point], event) {
        const { placement } = this.gesture;
        const angleOf = ({ x, y }) => Math.atan2(placement.x - x, placement.y - y);
        const turned = angleOf(point) - angleOf(this.gesture.points[0]);
        const degrees = placement.angle + (turned * 180) / Math.PI;
        return { ...placement, angle: event.shiftKey ? Math.round(degrees / 15) * 15 : degrees };
    }

    pinchTo(points) {
        const { gesture } = this;
        const placed = pinch(gesture.placement, gesture.points, points);
        const turned = placed.angle - gesture.placement.angle;
        gesture.turning ||= Math.abs(((turned + 540) % 360) - 180) > TURN_THRESHOLD;
        return gesture.turning ? placed : { ...placed, angle: gesture.placement.angle };
    }

    #up(event) {
        if (!this.pointers.delete(event.pointerId)) return;
        if (this.pointers.size > 0) return this.#begin();
        if (this.gesture) this.end();
        this.gesture = null;
    }

    #wheel(event) {
        if (!this.current()) return;
        event.preventDefault();
        const pixels = event.deltaY * (event.deltaMode === 1 ? 16 : 1) * (event.ctrlKey ? 5 : 1);
        const { placement } = this.current();
        const factor = WHEEL_FACTOR_PER_PIXEL ** -Math.max(-300, Math.min(300, pixels));
        this.change({ ...placement, zoom: placement.zoom * factor }, "wheel");
    }
}
