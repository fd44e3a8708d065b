// SPDX-License-Identifier: Apache-2.0
// Brings the newest scene to the canvas. While one is being drawn only the newest of those that
// come in waits, so that the picture never lags behind by more than one.
//
// A scene is { photo, object, placement, surroundings, plain }.

export class Presenter {
    /** report(scene, shown) after each picture, fail(error, scene) when one cannot be drawn. */
    constructor(engine, { report, fail }) {
        Object.assign(this, { engine, report, fail });
        this.photo = null;
        this.object = null;
        this.wanted = null;
        this.drawing = null;
        this.tail = Promise.resolve();
    }

    want(scene) {
        this.wanted = scene;
        this.drawing ??= this.#serially(() => this.#drawWanted());
    }

    /**
     * Hands a new photo, { file, name }, to the engine and returns it with what that found out. If
     * that fails, show the old scene again.
     */
    loadPhoto(source) {
        return this.#serially(async () => {
            this.photo = { ...source, ...await this.#setPhoto(source) };
            return this.photo;
        });
    }

    /** What the engine found out. A photo that does not fit takes the one before with it. */
    #setPhoto({ file }) {
        this.photo = null;
        return this.engine.setPhoto({ file });
    }

    /** The same for an object, { file, mask, name }. */
    loadObject(source) {
        return this.#serially(async () => {
            const { file, mask } = source;
            this.object = { ...source, ...await this.engine.setObject({ file, mask }) };
            return this.object;
        });
    }

    /** Runs a job of the engine's between two pictures. */
    #serially(job) {
        const result = this.tail.then(job);
        this.tail = result.catch(() => {});
        return result;
    }

    async #drawWanted() {
        while (this.wanted) {
            const scene = this.wanted;
            this.wanted = null;
            try {
                this.report(scene, await this.#draw(scene));
            } catch (error) {
                this.fail(error, scene);
            }
        }
        this.drawing = null;
    }

    async #draw({ photo, object, placement, surroundings, plain }) {
        if (photo !== this.photo) {
            await this.#setPhoto(photo);
            this.photo = photo;
        }
        if (object !== this.object) {
            await this.engine.setObject({ file: object.file, mask: object.mask });
            this.object = object;
        }
        return this.engine.show({ placement, surroundings, plain });
    }
}
