// SPDX-License-Identifier: Apache-2.0
// Starts an Engine: in a worker that draws on the page's canvas, or on the page where there is no
// worker or no canvas in it. Either way its functions return promises.

const workerAddress = new URL("./worker.js", import.meta.url);

class RemoteEngine {
    constructor(worker) {
        this.worker = worker;
        this.waiting = new Map();
        this.last = 0;
        worker.addEventListener("message", ({ data }) => this.#settle(data));
        worker.addEventListener("error", () => this.#fail());
    }

    #settle({ id, value, error }) {
        const { done, failed } = this.waiting.get(id);
        this.waiting.delete(id);
        if (error) failed(Object.assign(new Error(error.message), error));
        else done(value);
    }

    #fail() {
        for (const { failed } of this.waiting.values()) failed(new Error("worker"));
        this.waiting.clear();
    }

    call(call, argument, transfer = []) {
        return new Promise((done, failed) => {
            const id = ++this.last;
            this.waiting.set(id, { done, failed });
            this.worker.postMessage({ id, call, argument }, transfer);
        });
    }

    setPhoto = (photo) => this.call("setPhoto", photo);
    setObject = (object) => this.call("setObject", object);
    show = (scene) => this.call("show", scene);
    before = () => this.call("before");
    download = (scene) => this.call("download", scene);
}

/** A worker that can draw on a page's canvas, or null. */
async function drawingWorker(canvas) {
    if (typeof Worker === "undefined" || !canvas.transferControlToOffscreen) return null;
    let worker;
    try {
        worker = new Worker(workerAddress, { type: "module" });
        const engine = new RemoteEngine(worker);
        if (await engine.call("canDraw")) return engine;
    } catch {
        // No module workers, or no worker at all: the page does it.
    }
    worker?.terminate();
    return null;
}

/** Error "load" when the blend itself cannot be loaded. */
export async function startEngine(canvas) {
    const remote = await drawingWorker(canvas);
    if (remote) {
        const offscreen = canvas.transferControlToOffscreen();
        await remote.call("attach", offscreen, [offscreen]);
        return remote;
    }
    const { Engine } = await import("./engine.js");
    const engine = new Engine(canvas);
    await engine.open();
    return engine;
}
