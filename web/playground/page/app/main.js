// SPDX-License-Identifier: Apache-2.0
// Starts the page and connects its controls.

import { startEngine } from "../engine/client.js";
import { whileHeld } from "./controls.js";
import { choose, dropZones } from "./files.js";
import { Gestures } from "./gestures.js";
import { placementByKey, stepByKey } from "./keys.js";
import { inWords } from "./messages.js";
import { Notice } from "./notice.js";
import { Page } from "./page.js";
import { Sources } from "./sources.js";
import { Stage } from "./stage.js";

const byId = (id) => document.getElementById(id);

/** Whether a dialog keeps the page behind it from being used. */
const isBehindDialog = () => document.querySelector("dialog[open]") !== null;

function connectObject(page) {
    const { picture, handle, object } = page.stage;
    new Gestures({
        picture, handle,
        current: () => page.scene,
        change: (placement, kind) => page.change({ placement }, kind),
        end: () => page.history.close(),
        select: (yes) => page.stage.select(yes),
    });
    object.addEventListener("keydown", (event) => {
        if (event.key === "Escape") page.stage.select(false);
        if (event.ctrlKey || event.metaKey || event.altKey || !page.scene) return;
        const placement = placementByKey(page.scene.placement, event);
        if (!placement) return;
        event.preventDefault();
        page.change({ placement }, "keys");
    });
}

function connectSteps(page) {
    addEventListener("keydown", (event) => {
        const step = stepByKey(event);
        if (!step || !page.scene || isBehindDialog()) return;
        event.preventDefault();
        page.step(step);
    });
    for (const step of ["undo", "redo"]) {
        byId(step).addEventListener("click", () => page.scene && page.step(step));
    }
}

function connectSources(page, sources) {
    for (const kind of ["photo", "object"]) {
        choose(byId(`${kind}-choose`), byId(`${kind}-file`), (file) => sources.take(kind, file));
    }
    dropZones(byId("drop"), {
        take: (kind, file) => sources.take(kind, file),
        isClosed: isBehindDialog,
    });
    byId("object-paint").addEventListener("click", () => page.scene && sources.paint());
    for (const button of document.querySelectorAll("[data-example]")) {
        button.addEventListener("click", () => sources.open(button.dataset.example));
    }
}

async function start() {
    let engine;
    try {
        engine = await startEngine(byId("result"));
    } catch (error) {
        console.error(error);
        new Notice().say(inWords({ code: "load" }));
        new Stage().wait(null);
        return;
    }
    const page = new Page(engine);
    const sources = new Sources(page);
    await sources.open("balloon");
    connectObject(page);
    connectSteps(page);
    connectSources(page, sources);
    whileHeld(byId("plain"), (yes) => page.showPlain(yes));
    byId("download").addEventListener("click", () => page.scene && page.download());
}

start();
