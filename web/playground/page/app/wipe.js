// SPDX-License-Identifier: Apache-2.0
// Before and after: the photo alone, left of a divider that can be dragged.

export class Wipe {
    /**
     * before() promises a bitmap of the photo; begin() is called when it is to be seen, fail(error)
     * when it cannot.
     */
    constructor(button, { before, begin, fail }) {
        Object.assign(this, { button, before, begin, fail });
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
        if (on && !this.photo) return;
        this.button.setAttribute("aria-pressed", String(on));
        this.box.hidden = this.canvas.hidden = !on;
        this.#move();
        if (on) {
            this.begin();
            this.#load();
            return;
        }
        this.canvas.width = this.canvas.height = 0; // lets go of its memory
    }

    /** Says which photo the picture shows; there is nothing to compare before. */
    show(photo) {
        if (photo === this.photo) return;
        this.photo = photo;
        if (this.on) this.#load();
    }

    async #load() {
        try {
            const bitmap = await this.before();
            if (!this.on) return bitmap.close();
            [this.canvas.width, this.canvas.height] = [bitmap.width, bitmap.height];
            this.canvas.getContext("bitmaprenderer").transferFromImageBitmap(bitmap);
        } catch (error) {
            this.toggle(false);
            this.fail(error);
        }
    }

    #move() {
        for (const element of [this.box, this.canvas]) {
            element.style.setProperty("--at", `${this.divider.value}%`);
        }
    }
}
