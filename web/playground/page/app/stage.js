// SPDX-License-Identifier: Apache-2.0
// The picture on the page: its shape, the object's frame with the verdict's colour, the divider.

import { crossedSides } from "./placement.js";
import { verdictInWords } from "./messages.js";

/** Screen pixels from the object's frame to the middle of its handle. */
const HANDLE_REACH = 36;

const byId = (id) => document.getElementById(id);

/** A scene in a line: what the picture wants to show, and what it shows. */
const summary = ({ photo, object, placement: { x, y, zoom, angle }, surroundings, plain }) =>
    [photo.name, object.name, x, y, zoom, angle, surroundings, plain ? "plain" : "blend"].join("|");

export class Stage {
    constructor() {
        this.picture = byId("picture");
        this.result = byId("result");
        this.object = byId("object");
        this.handle = byId("handle");
        this.verdict = byId("verdict");
        this.readout = byId("readout");
        this.waiting = null;
        this.standing = { verdict: "wait", words: "No picture" };
    }

    /** Shows where the object is meant to stand. */
    place({ photo, object, placement }) {
        const { style } = this.object;
        // In parts of the picture, so that the frame follows when that is resized.
        style.setProperty("--x", placement.x / photo.width);
        style.setProperty("--y", placement.y / photo.height);
        style.setProperty("--wide", (object.width * placement.zoom) / photo.width);
        style.setProperty("--high", (object.height * placement.zoom) / photo.height);
        style.setProperty("--turn", `${-placement.angle}deg`);
        this.readout.textContent =
            `${placement.x}, ${placement.y} in ${photo.width} × ${photo.height}` +
            (photo.reduced ? ", shown smaller" : "");
        this.object.hidden = false;
        this.#putHandle({ photo, object, placement });
    }

    /** Above the object, or below it where that would be outside of the picture. */
    #putHandle({ photo, object, placement }) {
        const scale = photo.width / this.picture.clientWidth;
        const arm = (object.height * placement.zoom) / 2 + HANDLE_REACH * scale;
        const turn = (placement.angle * Math.PI) / 180;
        const [x, y] = [placement.x - arm * Math.sin(turn), placement.y - arm * Math.cos(turn)];
        const inside = x >= 0 && y >= 0 && x <= photo.width && y <= photo.height;
        this.object.dataset.handle = inside ? "above" : "below";
    }

    /** Says that there is nothing to draw yet without a "photo" or an "object". */
    lacks(kind) {
        this.standing = { verdict: "wait", words: `No ${kind} yet` };
        this.#say();
    }

    wants(scene) {
        if (!this.picture.dataset.shows) this.standing = { verdict: "wait", words: "Loading" };
        this.picture.dataset.wants = summary(scene);
    }

    /** Takes up what is drawn now. */
    drawn(scene, { verdict, box }) {
        const { photo, plain } = scene;
        this.picture.style.setProperty("--shape", `${photo.width} / ${photo.height}`);
        this.picture.style.setProperty("--ratio", photo.width / photo.height);
        byId("first")?.remove();
        this.picture.classList.toggle("plain", plain);
        this.picture.dataset.shows = summary(scene);
        this.object.dataset.verdict = verdict;
        this.standing = plain
            ? { verdict: "plain", words: "Plain paste" }
            : { verdict, words: verdictInWords(verdict, crossedSides(box, photo)) };
        this.#say();
    }

    /** Says what takes its time, or with null that it is done. */
    wait(words) {
        this.waiting = words && { verdict: "wait", words };
        this.picture.setAttribute("aria-busy", String(!!words));
        this.#say();
    }

    #say() {
        const { verdict, words } = this.waiting ?? this.standing;
        this.verdict.dataset.verdict = verdict;
        // Said aloud by screen readers, so only when it is news.
        if (this.verdict.textContent !== words) this.verdict.textContent = words;
    }

    /** Keeps the object's frame in sight, or lets the picture be seen alone. */
    select(yes) {
        this.picture.classList.toggle("selected", yes);
        if (yes) this.object.focus({ preventScroll: true });
        else this.object.blur();
    }
}
