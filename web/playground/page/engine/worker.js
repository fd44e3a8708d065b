// SPDX-License-Identifier: Apache-2.0
// An Engine in a worker. In: { id, call, argument }, "attach" with the page's canvas first.
// Out: { id, value } or { id, error: { name, code, message } }.

import { Engine } from "./engine.js";

let engine = null;

/** Whether a worker of this browser can draw. */
function canDraw() {
    return typeof OffscreenCanvas !== "undefined" && !!new OffscreenCanvas(1, 1).getContext("2d");
}

async function answer({ call, argument }) {
    if (call === "canDraw") return canDraw();
    if (call === "attach") {
        engine = new Engine(argument);
        return engine.open();
    }
    return engine[call](argument);
}

addEventListener("message", async ({ data }) => {
    try {
        const value = await answer(data);
        postMessage({ id: data.id, value }, value instanceof ImageBitmap ? [value] : []);
    } catch (error) {
        const { name, code, message } = error;
        postMessage({ id: data.id, error: { name, code, message } });
    }
});
