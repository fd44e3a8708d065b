// SPDX-License-Identifier: Apache-2.0
// Prints how smoothly an object is dragged: node web/tests/browser/frames.mjs, on an idle machine.
// Counted are the browser's frames that found a new picture, by the times that it gives them.

import { middleOf, openPage, pause, startBrowser } from "./browser.mjs";

const SECONDS = 6;

/** Milliseconds between pictures while the pointer goes in circles. */
async function intervals(page) {
    const { x, y } = await middleOf(page, "#object");
    await page.mouse.move(x, y);
    await page.mouse.down();
    // In the page itself, once a frame, as a hand would; the driver's own way takes too long.
    const times = await page.evaluate((x, y, seconds) => new Promise((done) => {
        const picture = document.getElementById("picture");
        const start = performance.now();
        const times = [];
        let shows = null;
        const step = (now) => {
            if (picture.dataset.shows !== shows) times.push(now);
            shows = picture.dataset.shows;
            const turn = (now - start) / 400;
            picture.dispatchEvent(new PointerEvent("pointermove", { bubbles: true, pointerId: 1,
                clientX: x + 150 * Math.sin(turn), clientY: y + 100 * (1 - Math.cos(turn)) }));
            if (now - start < 1000 * seconds) requestAnimationFrame(step);
            else done(times);
        };
        requestAnimationFrame(step);
    }), x, y, SECONDS);
    await page.mouse.up();
    return times.slice(1).map((time, at) => time - times[at]).slice(10);
}

function print(name, steps) {
    const sorted = [...steps].sort((a, b) => a - b);
    const at = (share) => sorted[Math.floor(share * (sorted.length - 1))].toFixed(1);
    const smooth = (100 * steps.filter((step) => step <= 20).length) / steps.length;
    console.log(`${name}: ${steps.length} frames, ${smooth.toFixed(1)} % within 20 ms; ` +
        `median ${at(0.5)}, 95 % ${at(0.95)}, longest ${at(1)} ms`);
}

const place = await startBrowser();
const onPage = (page) => page.evaluateOnNewDocument(() => {
    delete HTMLCanvasElement.prototype.transferControlToOffscreen;
});
for (const [name, prepare] of [["worker", undefined], ["page", onPage]]) {
    const page = await openPage(place, { prepare });
    await pause(500);
    print(name, await intervals(page));
    await page.close();
}
await place.close();
