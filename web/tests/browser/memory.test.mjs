// SPDX-License-Identifier: Apache-2.0
// A thousand placements and a thousand refusals leave no memory behind, in the module or outside.

import assert from "node:assert/strict";
import { after, before, describe, test } from "node:test";
import { closePage, missing, openPage, startBrowser } from "./browser.mjs";

/** Bytes of what scripts of the worker hold, and of the modules' memories. */
async function memoryOf(worker) {
    const { client } = worker;
    await client.send("HeapProfiler.collectGarbage");
    const { result } = await client.send("Runtime.evaluate", {
        expression: "WebAssembly.Memory.prototype",
    });
    const { objects } = await client.send("Runtime.queryObjects", {
        prototypeObjectId: result.objectId,
    });
    const { result: sum } = await client.send("Runtime.callFunctionOn", {
        objectId: objects.objectId,
        functionDeclaration: `function () {
            return this.reduce((sum, memory) => sum + memory.buffer.byteLength, 0);
        }`,
        returnByValue: true,
    });
    const { usedSize } = await client.send("Runtime.getHeapUsage");
    return { scripts: usedSize, modules: sum.value };
}

/** Presses keys of the object in turn, so often, each time until it is drawn. */
async function press(page, keys, times, shiftKey = false) {
    await page.evaluate(async (keys, times, shiftKey) => {
        const object = document.getElementById("object");
        const { dataset } = document.getElementById("picture");
        for (let count = 0; count < times; count++) {
            object.dispatchEvent(new KeyboardEvent("keydown",
                { key: keys[count % keys.length], shiftKey, bubbles: true }));
            while (dataset.wants !== dataset.shows) {
                const notice = document.getElementById("notice");
                if (!notice.hidden) throw new Error(notice.innerText);
                await new Promise((done) => setTimeout(done));
            }
        }
    }, keys, times, shiftKey);
}

const MEGABYTE = 2 ** 20;

describe("memory", { skip: missing() }, () => {
    let place;

    before(async () => (place = await startBrowser()));
    after(() => place.close());

    for (const [name, verdict] of [["placements", "fits"], ["refusals", "refused"]]) {
        test(`stays after 1,000 ${name}`, async () => {
            const page = await openPage(place);
            if (verdict === "refused") await press(page, ["ArrowLeft"], 120, true);
            const keys = ["ArrowDown", "+", ",", "ArrowUp", "-", "."];
            await press(page, keys, 60);
            assert.equal(await page.$eval("#object", ({ dataset }) => dataset.verdict), verdict);
            const [worker] = page.workers();
            const start = await memoryOf(worker);
            const part = 102; // whole turns of the keys; a call to the page has a time limit
            for (let done = 0; done < 1000; done += part) await press(page, keys, part);
            const end = await memoryOf(worker);
            assert.equal(await page.$eval("#object", ({ dataset }) => dataset.verdict), verdict);
            assert.equal(end.modules, start.modules);
            assert.ok(end.scripts < start.scripts + MEGABYTE,
                `scripts hold ${end.scripts} bytes, ${start.scripts} before`);
            await closePage(page);
        });
    }
});
