// SPDX-License-Identifier: Apache-2.0
// Before and after: the photo alone, left of a divider that can be dragged.

export class Wipe {
    /** before() promises a bitmap of the photo; begin() is called when it is to be seen. */
    constructor(button, { before, begin }) {
        Object.assign(this, { button, before, begin });
        this.canvas = document.getElementById("before");
        this.box = document.getElementById("wipe");
        this.divider = document.getElementById("divider");
        this.photo = null;
        button.addEventListener("click", () => this.toggle(!this.on));
        this.divider.addEventListener("input", () => this.#move());
    }

    get on() {
        return this.button.getAttribute("aria-pressed") === "true";
    }

    toggle(on) {
        this.button.setAttribute("aria-pressed", String(on));
        this.box.hidden = this.canvas.hidden = !on;
        this.#move();
        if (on) {
            this.begin();
            return this.#load();
        }
        this.canvas.width = this.canvas.height = 0; // lets go of its memory
    }

    /** Says which photo the picture shows. */
    show(photo) {
        if (photo === this.photo) return;
        this.photo = photo;
        if (this.on) this.#load();
    }

    async #load() {
        const bitmap = await this.before();
        if (!this.on) return bitmap.close();
        [this.canvas.width, this.canvas.height] = [bitmap.width, bitmap.height];
        this.canvas.getContext("bitmaprenderer").transferFromImageBitmap(bitmap);
    }

    #move() {
        for (const element of [this.box, this.canvas]) {
            element.style.setProperty("--at", `${this.divider.value}%`);
        }
    }
}
