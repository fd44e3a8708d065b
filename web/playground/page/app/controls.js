// SPDX-License-Identifier: Apache-2.0
// The panel: shows the scene and says what is wanted.
//   change(part, kind)  a part of the scene, such as { surroundings: 12 }

import { sliderToZoom, zoomToSlider } from "./placement.js";

const byId = (id) => document.getElementById(id);

/** Zooms print as percent, with a digit more when they are small. */
const zoomInWords = (zoom) => `${zoom < 0.1 ? (zoom * 100).toFixed(1) : Math.round(zoom * 100)} %`;

/** The page turns to the right where angles count to the left. */
function turnInWords(angle) {
    const side = angle > 0 ? " left" : angle < 0 ? " right" : "";
    return `${Math.abs(Math.round(angle * 10) / 10)}°${side}`;
}

/** Moves a slider, and the bar in its track, which begins at 0. */
export function slide(slider, value) {
    slider.value = value;
    const [low, high] = [Number(slider.min), Number(slider.max)];
    const part = (at) => (100 * (at - low)) / (high - low);
    const ends = [part(Math.max(0, low)), part(slider.value)].sort((a, b) => a - b);
    slider.style.setProperty("--from", `${ends[0]}%`);
    slider.style.setProperty("--to", `${ends[1]}%`);
}

export class Controls {
    constructor({ current, change: accept }) {
        const change = (part) => current() && accept(part, "slider");
        this.size = byId("size");
        this.turn = byId("turn");
        this.surroundings = byId("surroundings");
        const place = (part) => change({ placement: { ...current()?.placement, ...part } });
        this.size.addEventListener("input", () =>
            place({ zoom: sliderToZoom(this.size.value / this.size.max) }));
        this.turn.addEventListener("input", () => place({ angle: -this.turn.value }));
        this.surroundings.addEventListener("input", () =>
            change({ surroundings: Number(this.surroundings.value) }));
    }

    /** Shows a scene. */
    show({ photo, object, placement, surroundings }) {
        const { zoom, angle } = placement;
        this.#slide(this.size, Math.round(zoomToSlider(zoom) * this.size.max), zoomInWords(zoom));
        this.#slide(this.turn, -angle, turnInWords(angle));
        this.surroundings.disabled = !object.surroundings;
        byId("surroundings-help").textContent = object.surroundings
            ? "What stood around the object comes along."
            : "A cut-out has nothing around it.";
        this.#slide(this.surroundings, object.surroundings ? surroundings : 0,
            surroundings && object.surroundings ? `${surroundings} px` : "none");
        this.showSource("photo", photo);
        this.showSource("object", object);
    }

    #slide(slider, value, words) {
        if (Number(slider.value) === value && slider.getAttribute("aria-valuetext") === words) return;
        slide(slider, value);
        slider.setAttribute("aria-valuetext", words);
        byId(`${slider.id}-value`).textContent = words;
    }

    /** Shows what is the "photo" or the "object". */
    showSource(kind, { name, thumbnail }) {
        const canvas = byId(`${kind}-thumb`);
        byId(`${kind}-name`).textContent = name;
        byId(`${kind}-name`).title = name;
        if (canvas.shows === thumbnail) return;
        canvas.shows = thumbnail;
        const context = canvas.getContext("2d");
        context.clearRect(0, 0, canvas.width, canvas.height);
        context.putImageData(thumbnail, Math.round((canvas.width - thumbnail.width) / 2),
            Math.round((canvas.height - thumbnail.height) / 2));
    }

    showSteps({ canUndo, canRedo }) {
        byId("undo").setAttribute("aria-disabled", String(!canUndo));
        byId("redo").setAttribute("aria-disabled", String(!canRedo));
    }
}

/** Tells hold(true) and hold(false) while a button is held by pointer, space or enter. */
export function whileHeld(button, hold) {
    const keys = [" ", "Enter"];
    const set = (yes) => {
        button.classList.toggle("held", yes);
        hold(yes);
    };
    button.addEventListener("pointerdown", (event) => {
        if (event.button > 0) return;
        button.setPointerCapture(event.pointerId);
        set(true);
    });
    for (const name of ["pointerup", "pointercancel", "blur"]) {
        button.addEventListener(name, () => set(false));
    }
    button.addEventListener("keydown", (event) => {
        if (keys.includes(event.key) && !event.repeat) set(true);
    });
    button.addEventListener("keyup", (event) => keys.includes(event.key) && set(false));
    button.addEventListener("contextmenu", (event) => event.preventDefault()); // a long touch
}
