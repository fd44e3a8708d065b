// SPDX-License-Identifier: Apache-2.0
import { freeFrames, frameObject, roundPlace } from "./bare.js";
import { Core } from "./core.js";
import { fail } from "./errors.js";
import { checkPlacement, checkReach, extentOf, Layers, settle } from "./layer.js";
import { newCore } from "./load.js";
import { PreparedObject } from "./object.js";
import { NOTHING, Photo, unite } from "./photo.js";
import { checkPicture } from "./pictures.js";

const MODES = ["prepared", "plain", "asIs"];
const BARE_VERDICTS = new Map([[0, "fits"], [1, "seam"]]);

function checkOptions(options) {
    const { mode = "prepared", surroundings } = options ?? {};
    if (!MODES.includes(mode)) fail("argument", `mode is ${String(mode)}, must be ${MODES.join()}`);
    return { mode, reach: checkReach(surroundings) };
}

const refuse = (reason) => ({ verdict: "refused", reason });

export class Blender {
    #core;
    #photo = null;
    #object = null;
    #frames = null;
    #layers;
    #dirty = NOTHING;
    // What has changed since the last picture that a caller was given.
    #pending = NOTHING;

    constructor(core) {
        if (!(core instanceof Core)) fail("argument", "make it with await Blender.create()");
        this.#core = core;
        this.#layers = new Layers(core);
    }

    static async create() {
        return new Blender(await newCore());
    }

    get #live() {
        return this.#core ?? fail("argument", "the Blender was disposed of");
    }

    get #scene() {
        const core = this.#live;
        if (!this.#photo) fail("argument", "there is no photo: call setPhoto first");
        if (!this.#object) fail("argument", "there is no object: call setObject first");
        return { core, photo: this.#photo, object: this.#object };
    }

    setPhoto(photo) {
        const core = this.#live;
        const { data, width, height } = checkPicture("photo", photo);
        const pixels = core.outside(data);
        if (this.#photo?.width !== width || this.#photo.height !== height) {
            this.#forgetPhoto();
            this.#photo = new Photo(core, width, height);
        }
        this.#photo.fill(pixels);
        this.#pending = this.#photo.whole;
    }

    setObject(object, options) {
        const made = new PreparedObject(this.#live, object, options);
        this.#forgetObject();
        this.#object = made;
        return made.info;
    }

    verify(placement, options) {
        return this.#find(placement, options).verdict;
    }

    bounds(placement) {
        const { object } = this.#scene;
        const place = settle(object, checkPlacement(placement));
        const { left, top, right, bottom } = extentOf(object.outline, object.middle, place);
        return { left, top, width: right - left, height: bottom - top };
    }

    blend(placement, options) {
        const found = this.#find(placement, options);
        if (found.verdict === "refused") fail("refused", found.reason);
        const photo = this.#photo;
        this.#pending = unite(this.#pending, photo.restore());
        found.draw();
        return this.#show();
    }

    clear() {
        if (!this.#live || !this.#photo) fail("argument", "there is no photo: call setPhoto first");
        this.#pending = unite(this.#pending, this.#photo.restore());
        return this.#show();
    }

    get dirty() {
        return this.#dirty;
    }

    get memory() {
        return this.#live.size;
    }

    dispose() {
        if (!this.#core) return;
        this.#forgetObject();
        this.#forgetPhoto();
        this.#core = null;
    }

    #show() {
        this.#dirty = unite(this.#pending, this.#photo.changed);
        this.#pending = NOTHING;
        return this.#photo.result;
    }

    #forgetPhoto() {
        this.#forgetFrames();
        this.#photo?.free();
        this.#photo = null;
    }

    #forgetObject() {
        this.#forgetFrames();
        this.#layers.forget();
        this.#object?.free();
        this.#object = null;
    }

    #forgetFrames() {
        freeFrames(this.#core, this.#frames);
        this.#frames = null;
    }

    // What becomes of the object at a place, and how it is drawn there.
    #find(placement, options) {
        const scene = this.#scene, place = checkPlacement(placement);
        const checked = checkOptions(options);
        return checked.mode === "asIs" ? this.#findBare(scene, roundPlace(place))
            : this.#findLayer(scene, settle(scene.object, place), checked);
    }

    #findLayer({ core, photo, object }, place, options) {
        const { outline } = object;
        if (Math.max(outline.width, outline.height) * place.zoom < 1) {
            return refuse("the object would be smaller than a pixel");
        }
        const extent = extentOf(outline, object.middle, place);
        const outside = extent.right <= 0 || extent.bottom <= 0 || extent.left >= photo.width ||
            extent.top >= photo.height;
        const layer = outside ? null : this.#layers.find(object, photo, place, options);
        const part = layer && core.place(layer, photo.width, photo.height);
        if (!part) return refuse("nothing of the object would lie in the photo");
        const cut = extent.left < 0 || extent.top < 0 || extent.right > photo.width ||
            extent.bottom > photo.height;
        return {
            verdict: cut ? "cut" : "fits",
            draw: () => this.#drawLayer(core, photo, layer, part),
        };
    }

    #drawLayer(core, photo, layer, part) {
        photo.touch(layer.changes);
        if (photo.opaque) return core.paste(layer, photo.image);
        const box = photo.cut(part), image = photo.lift(box);
        try {
            const moved = { ...layer, left: layer.left - box.left, top: layer.top - box.top };
            core.paste(moved, image);
            return photo.lay(image, box);
        } finally {
            core.freeImage(image);
        }
    }

    #findBare({ core, photo, object }, place) {
        this.#frames ??= frameObject(core, object.source, photo.width, photo.height);
        const frames = this.#frames;
        if (!frames) return refuse("the object is larger than the photo");
        const verdict = BARE_VERDICTS.get(core.verify(frames.mask, place));
        const box = verdict && core.blendBox(frames.mask, place);
        if (!box) return refuse("the object would be too large for the photo");
        return { verdict, draw: () => this.#drawBare(core, photo, frames, place, box) };
    }

    #drawBare(core, photo, frames, place, box) {
        // The rows of a rectangle that leaves the photo go on in those beside them.
        const leaves = box.left < 0 || box.left + box.width > photo.width;
        photo.touch(leaves ? { left: 0, top: box.top - 1, width: photo.width,
            height: box.height + 2 } : box);
        if (photo.opaque) return core.imageBlending(frames.icon, photo.image, frames.mask, place);
        const image = photo.lift(photo.whole);
        try {
            core.imageBlending(frames.icon, image, frames.mask, place);
            return photo.lay(image, photo.whole);
        } finally {
            core.freeImage(image);
        }
    }
}
