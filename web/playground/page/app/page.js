// SPDX-License-Identifier: Apache-2.0
// What the page shows is one scene, { photo, object, placement, surroundings }, which is never
// changed but replaced, so that the history can keep it.

import { Controls } from "./controls.js";
import { nameFor, save, typeFor } from "./download.js";
import { History } from "./history.js";
import { inWords } from "./messages.js";
import { Notice } from "./notice.js";
import { settle } from "./placement.js";
import { Presenter } from "./presenter.js";
import { Stage } from "./stage.js";
import { Wipe } from "./wipe.js";

export class Page {
    constructor(engine) {
        this.engine = engine;
        this.history = new History();
        this.stage = new Stage();
        this.notice = new Notice();
        this.plain = false;
        this.downloadButton = document.getElementById("download");
        this.presenter = new Presenter(engine, {
            report: (scene, shown) => this.#drawn(scene, shown),
            fail: (error, { photo }) => this.notice.say(inWords(error, photo.name)),
        });
        this.wipe = new Wipe(document.getElementById("compare"), {
            before: () => engine.before(),
            begin: () => this.stage.select(false),
            fail: (error) => this.notice.say(inWords(error, this.scene.photo.name)),
        });
        this.controls = new Controls({
            current: () => this.scene,
            change: (part, kind) => this.change(part, kind),
        });
    }

    /** The scene, or null before there is one. */
    get scene() {
        return this.history.present;
    }

    /** Replaces parts of the scene. Changes of one `kind` may be one step of the history. */
    change(part, kind = null) {
        const scene = { ...this.scene, ...part };
        scene.placement = settle(scene.placement, scene.photo, scene.object);
        if (this.scene && sameScene(scene, this.scene)) return;
        this.history.push(scene, kind);
        this.show();
    }

    /** "undo" or "redo". */
    step(direction) {
        const before = this.scene;
        this.history[direction]();
        if (this.scene !== before) this.show();
    }

    /** Shows the object as its mask cuts it out, or blended again. */
    showPlain(yes) {
        if (!this.scene || this.plain === yes) return;
        this.plain = yes;
        this.show();
    }

    /** Saves the photo with the object at full size. */
    async download() {
        if (this.busy) return;
        const { photo, object, placement, surroundings } = this.scene;
        const type = typeFor(photo.file.type);
        this.#busy(true);
        try {
            const file = await this.engine.download({
                photo: { file: photo.file },
                object: { file: object.file, mask: object.mask },
                placement, surroundings, type,
            });
            save(file, nameFor(photo.name, type));
            this.notice.clear();
        } catch (error) {
            this.notice.say(inWords(error, photo.name));
        } finally {
            this.#busy(false);
        }
    }

    #busy(yes) {
        this.stage.wait(yes ? "Writing the file" : null);
        this.downloadButton.setAttribute("aria-disabled", String(yes));
        this.busy = yes;
    }

    /** Brings the scene, if there is one, to the picture and the panel. */
    show() {
        const { scene } = this;
        if (!scene) return;
        // The frame goes ahead of the picture, but not into one of another shape.
        if (this.drawnScene?.photo === scene.photo && this.drawnScene.object === scene.object) {
            this.stage.place(scene);
        }
        this.controls.show(scene);
        this.controls.showSteps(this.history);
        const wanted = { ...scene, plain: this.plain };
        this.stage.wants(wanted);
        this.presenter.want(wanted);
    }

    #drawn(scene, shown) {
        this.drawnScene = scene;
        this.stage.drawn(scene, shown);
        if (this.scene.photo === scene.photo) this.stage.place(this.scene);
        this.wipe.show(scene.photo);
    }
}

function sameScene(a, b) {
    return a.photo === b.photo && a.object === b.object && a.surroundings === b.surroundings &&
        ["x", "y", "zoom", "angle"].every((name) => a.placement[name] === b.placement[name]);
}
