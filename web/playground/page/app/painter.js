// SPDX-License-Identifier: Apache-2.0
// The dialog in which a mask is painted over a picture, with pointer or keys.

import { decode, scaleWithin, scaledSide } from "../engine/pictures.js";
import { slide } from "./controls.js";
import { stepByKey } from "./keys.js";
import { maskBase } from "./mask-base.js";
import { Strokes } from "./strokes.js";

/** Masks are painted at this size at most, and scaled to their picture. */
const LARGEST_MASK = 3e6;
const KEY_STEPS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

const byId = (id) => document.getElementById(id);

export class Painter {
    constructor() {
        this.dialog = byId("painter");
        this.picture = byId("painter-picture");
        this.photo = byId("painter-photo");
        this.paint = byId("painter-paint");
        this.brush = byId("painter-brush");
        this.size = byId("brush-size");
        this.context = this.paint.getContext("2d", { willReadFrequently: true });
        this.painting = false;
        this.opened = 0;
        this.#listen();
    }

    /**
     * Lets a mask be painted for { file, mask }: { mask }, or null when that was given up or another
     * came before it was ready.
     */
    async open(object) {
        const turn = ++this.opened;
        const parts = await this.#load(object);
        if (turn !== this.opened) {
            parts.bitmap.close();
            return null;
        }
        this.done?.(null);
        this.#show(parts);
        return new Promise((done) => (this.done = done));
    }

    async #load(object) {
        const bitmap = await decode(object.file);
        const scale = scaleWithin(bitmap.width, bitmap.height, LARGEST_MASK);
        const width = scaledSide(bitmap.width, scale);
        const height = scaledSide(bitmap.height, scale);
        try {
            return { bitmap, width, height, base: await maskBase(object, width, height) };
        } catch (error) {
            bitmap.close();
            throw error;
        }
    }

    #show({ bitmap, width, height, base }) {
        for (const canvas of [this.photo, this.paint]) Object.assign(canvas, { width, height });
        const context = this.photo.getContext("2d");
        context.imageSmoothingQuality = "high";
        context.drawImage(bitmap, 0, 0, width, height);
        bitmap.close();
        this.strokes = new Strokes(this.context, base);
        this.picture.style.setProperty("--shape", `${width} / ${height}`);
        this.picture.style.setProperty("--ratio", width / height);
        this.at = { x: width / 2, y: height / 2 };
        this.result = null;
        this.dialog.showModal();
        this.#showTools();
    }

    #listen() {
        const { paint, dialog } = this;
        paint.addEventListener("pointerdown", (event) => this.#down(event));
        paint.addEventListener("pointermove", (event) => this.#move(event));
        for (const name of ["pointerup", "pointercancel"]) {
            paint.addEventListener(name, (event) => event.isPrimary && this.#lift());
        }
        paint.addEventListener("pointerleave", () => (this.brush.hidden = !this.#focused));
        paint.addEventListener("keydown", (event) => this.#key(event));
        paint.addEventListener("keyup", (event) => event.key === " " && this.#lift());
        paint.addEventListener("focus", () => this.#showBrush());
        paint.addEventListener("blur", () => {
            this.#lift();
            this.brush.hidden = true;
        });
        this.size.addEventListener("input", () => this.#showTools());
        byId("painter-undo").addEventListener("click", () => this.#undo());
        byId("painter-clear").addEventListener("click", () => {
            this.#lift();
            this.strokes.clear();
            this.#showTools();
        });
        byId("painter-cancel").addEventListener("click", () => dialog.close());
        byId("painter-use").addEventListener("click", () => this.#use());
        dialog.addEventListener("close", () => this.#finish());
        dialog.addEventListener("keydown", (event) => {
            if (stepByKey(event) !== "undo") return;
            event.preventDefault();
            this.#undo();
        });
    }

    get #focused() {
        return document.activeElement === this.paint && this.paint.matches(":focus-visible");
    }

    get #erasing() {
        return this.dialog.querySelector("input[name=tool]:checked").value === "erase";
    }

    /** Mask pixels for each pixel of the screen. */
    get #scale() {
        return this.paint.width / this.paint.getBoundingClientRect().width;
    }

    #pointOf(event) {
        const box = this.paint.getBoundingClientRect();
        const scale = this.#scale;
        return { x: (event.clientX - box.left) * scale, y: (event.clientY - box.top) * scale };
    }

    #down(event) {
        if (event.button > 0 || !event.isPrimary) return; // the first finger paints
        this.paint.setPointerCapture(event.pointerId);
        this.#press(this.#pointOf(event));
    }

    #move(event) {
        if (!event.isPrimary) return;
        const events = event.getCoalescedEvents?.() ?? [];
        for (const each of events.length ? events : [event]) this.#goTo(this.#pointOf(each));
    }

    #press(point) {
        this.at = point;
        this.painting = true;
        this.strokes.begin(this.#erasing, this.size.value * this.#scale, point);
        this.#showTools();
    }

    #lift() {
        this.painting = false;
    }

    #goTo(point) {
        this.at = point;
        if (this.painting) this.strokes.extend(point);
        this.#showBrush();
    }

    #key(event) {
        const step = KEY_STEPS[event.key];
        if (!step && event.key !== " ") return;
        event.preventDefault();
        if (event.key === " ") {
            if (!event.repeat) this.#press(this.at);
            return;
        }
        const length = (event.shiftKey ? 1 : Math.max(2, this.size.value / 4)) * this.#scale;
        const within = (value, most) => Math.min(Math.max(value, 0), most);
        this.#goTo({
            x: within(this.at.x + step[0] * length, this.paint.width),
            y: within(this.at.y + step[1] * length, this.paint.height),
        });
    }

    #showBrush() {
        const { style } = this.brush;
        this.brush.hidden = false;
        style.left = `${(100 * this.at.x) / this.paint.width}%`;
        style.top = `${(100 * this.at.y) / this.paint.height}%`;
        style.width = style.height = `${this.size.value}px`;
    }

    #showTools() {
        byId("brush-value").textContent = `${this.size.value} px`;
        slide(this.size, this.size.value);
        byId("painter-undo").setAttribute("aria-disabled", String(!this.strokes.done.length));
        if (!this.brush.hidden) this.#showBrush();
    }

    #undo() {
        this.#lift(); // what is left of the stroke is not to extend the one before
        this.strokes.undo();
        this.#showTools();
    }

    #use() {
        this.result = { mask: this.strokes.mask() };
        this.dialog.close();
    }

    #finish() {
        this.#lift();
        this.done?.(this.result);
        this.done = this.result = this.strokes = null;
        for (const canvas of [this.photo, this.paint]) canvas.width = canvas.height = 0;
    }
}
