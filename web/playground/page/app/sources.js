// SPDX-License-Identifier: Apache-2.0
// New photos and objects for the page: from files, from the examples, with a painted mask.

import { loadExample } from "./examples.js";
import { inWords } from "./messages.js";
import { Painter } from "./painter.js";
import { firstPlacement } from "./placement.js";

export class Sources {
    constructor(page) {
        this.page = page;
        this.painter = new Painter();
        this.half = { surroundings: 0 }; // a scene in the making, before the first
    }

    /** Takes a file as "photo" or "object"; null is no file. */
    take(kind, file) {
        return this.#attempt(file?.name, async () => {
            if (!file) throw Object.assign(new Error(), { code: "no-file" });
            if (kind === "photo") await this.#takePhoto({ file, name: file.name });
            else await this.#takeObject({ file, mask: null, name: file.name });
        });
    }

    /** Lets the mask of the object be painted. */
    paint() {
        const { object } = this.page.scene;
        return this.#attempt(object.name, () => this.#paint(object, true));
    }

    /** Opens an example by its name. */
    open(name) {
        return this.#attempt(name, async () => {
            const example = await loadExample(name);
            const { presenter } = this.page;
            const photo = await presenter.loadPhoto(example.photo);
            const object = await presenter.loadObject(example.object);
            const { placement, surroundings } = example;
            this.page.change({ photo, object, placement, surroundings });
        });
    }

    async #attempt(name, job) {
        const { notice, stage } = this.page;
        notice.clear();
        stage.wait("Loading");
        try {
            await job();
        } catch (error) {
            notice.say(inWords(error, name));
            this.page.show();
        } finally {
            stage.wait(null);
        }
    }

    async #takePhoto(source) {
        this.#place({ photo: await this.page.presenter.loadPhoto(source) });
    }

    async #takeObject(source) {
        let object;
        try {
            object = await this.page.presenter.loadObject(source);
        } catch (error) {
            if (error.code !== "needs-mask") throw error;
            return this.#paint(source, false);
        }
        this.#place({ object, surroundings: 0 });
    }

    /** With `stay` the object keeps its place, as it is the same with another mask. */
    async #paint(source, stay) {
        const { stage } = this.page;
        stage.wait(null);
        const painted = await this.painter.open(source);
        if (painted === null) return;
        stage.wait("Loading");
        const object = await this.page.presenter.loadObject({
            file: source.file, name: source.name, mask: painted.mask,
        });
        if (stay) this.page.change({ object, surroundings: 0 });
        else this.#place({ object, surroundings: 0 });
    }

    /** Puts a new photo or object in its first place, once there are both. */
    #place(part) {
        const { page } = this;
        const scene = { ...page.scene ?? this.half, ...part };
        const { photo, object } = scene;
        if (photo && object) {
            page.change({ ...scene, placement: firstPlacement(photo, object) });
            return;
        }
        this.half = scene;
        page.controls.showSource(photo ? "photo" : "object", photo ?? object);
        page.stage.lacks(photo ? "object" : "photo");
    }
}
