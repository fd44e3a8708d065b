// SPDX-License-Identifier: Apache-2.0
// The page itself: no jumps, every control by keyboard with a visible name, light and dark, narrow,
// from any address, and without a worker that can draw.

import assert from "node:assert/strict";
import { rmSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { canvasPixels, closePage, middleOf, missing, noticeOf, openPage, pause, screenshot,
    settled, shown, shownOnce, slide, startBrowser } from "./browser.mjs";
import { difference } from "./files.mjs";

/** Counts layout shifts from the first paint on. */
const countShifts = (page) => page.evaluateOnNewDocument(() => {
    globalThis.shifts = [];
    new PerformanceObserver((list) => {
        for (const { value, sources, hadRecentInput } of list.getEntries()) {
            if (hadRecentInput) continue; // what a key or a click asked for
            const names = sources.map(({ node }) => node?.id || node?.textContent);
            globalThis.shifts.push(`${value}: ${names}`);
        }
    }).observe({ type: "layout-shift", buffered: true });
});

/** What the focus is on: its id, its visible name, whether it and a ring around it can be seen. */
const focused = (page) => page.evaluate(() => {
    const element = document.activeElement;
    if (element === document.body) return null;
    const labels = element.labels?.length
        ? [...element.labels]
        : (element.getAttribute("aria-labelledby") ?? "").split(" ").filter(Boolean)
            .map((id) => document.getElementById(id));
    const name = element.innerText || labels.map((label) => label.innerText).join(" ");
    const box = element.getBoundingClientRect();
    const top = document.elementFromPoint(box.x + box.width / 2, box.y + box.height / 2);
    const ringed = element.id === "divider" ? element.parentElement.children[2] : element;
    return {
        id: element.id || element.dataset.example,
        name: name.trim(),
        inSight: !!top && (element.contains(top) || top.contains(element)),
        ring: getComputedStyle(ringed).outlineStyle !== "none" ||
            getComputedStyle(element, "::before").borderTopWidth === "4px",
    };
});

const wordsOf = (page) => page.$eval("#verdict", (element) => element.textContent);

/** The lowest contrast of text in the page with what is behind it. */
const lowestContrast = (page) => page.evaluate(() => {
    const canvas = new OffscreenCanvas(1, 1).getContext("2d", { willReadFrequently: true });
    const channels = (colour) => {
        canvas.clearRect(0, 0, 1, 1);
        canvas.fillStyle = colour;
        canvas.fillRect(0, 0, 1, 1);
        return [...canvas.getImageData(0, 0, 1, 1).data];
    };
    const light = (colour) => {
        const [r, g, b] = channels(colour).map((value) => {
            const part = value / 255;
            return part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
        });
        return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    };
    const ground = (element) => {
        for (let at = element; at; at = at.parentElement) {
            const { backgroundColor } = getComputedStyle(at);
            if (channels(backgroundColor)[3] === 255) return backgroundColor;
        }
        return "white";
    };
    let lowest = { ratio: 21 };
    for (const element of document.querySelectorAll("h1, h2, p, label, output, button, span, b")) {
        if (!element.innerText?.trim() || !element.getClientRects().length) continue;
        if (element.closest("[aria-disabled=true], .unseen, .wipe")) continue;
        const [a, b] = [light(getComputedStyle(element).color), light(ground(element))];
        const ratio = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
        if (ratio < lowest.ratio) lowest = { ratio, text: element.innerText };
    }
    return lowest;
});

describe("the page", { skip: missing() }, () => {
    let place;

    before(async () => (place = await startBrowser({ prefix: "/a/sub path/" })));
    after(() => place.close());

    const screens = { wide: {}, narrow: { width: 390, height: 844, touch: true } };
    for (const [name, options] of Object.entries(screens)) {
        test(`opens ${name} without a jump`, async () => {
            const page = await openPage(place, { ...options, prepare: countShifts });
            await pause(300);
            assert.deepEqual(await page.evaluate(() => globalThis.shifts), []);
            const [content, screen] = await page.evaluate(() =>
                [document.documentElement.scrollWidth, document.documentElement.clientWidth]);
            assert.equal(content, screen);
            await screenshot(page, `opened ${name}`);
            await closePage(page);
        });
    }

    test("does not jump either when what it says changes", async () => {
        const page = await openPage(place, { prepare: countShifts });
        await page.click("[data-example=vase]");
        await shownOnce(page, ({ object }) => object === "vase.jpg");
        await slide(page, "#turn", 120);
        await slide(page, "#surroundings", 30);
        await page.click("#compare");
        await shownOnce(page, ({ surroundings }) => surroundings === 30);
        await pause(200);
        assert.deepEqual(await page.evaluate(() => globalThis.shifts), []);
        await closePage(page);
    });

    test("has every control in the order of Tab, in sight, ringed and named", async () => {
        const page = await openPage(place);
        await page.focus("#object");
        await page.keyboard.press("ArrowLeft"); // so that there is something to undo
        await shownOnce(page, ({ placement: { x } }) => x === 749);
        await page.click("#compare");
        await page.focus("#divider");
        await page.keyboard.down("Shift");
        await page.keyboard.press("Tab");
        await page.keyboard.up("Shift");
        const found = [await focused(page)];
        for (;;) {
            await page.keyboard.press("Tab");
            const next = await focused(page);
            if (next === null || next.id === "object") break;
            found.push(next);
            assert.ok(found.length < 40, "the focus goes on and on");
        }
        assert.deepEqual(found.map(({ id }) => id), ["object", "divider", "photo-choose",
            "object-choose", "object-paint", "balloon", "vase", "size", "turn", "surroundings",
            "plain", "compare", "undo", "redo", "download"]);
        for (const { id, name, inSight, ring } of found) {
            assert.ok(name.length > 2, `${id} has no visible name`);
            assert.ok(inSight, `${id} is hidden when it has the focus`);
            assert.ok(ring, `${id} does not show the focus`);
        }
        await closePage(page);
    });

    test("has every control of the painter in the order of Tab", async () => {
        const page = await openPage(place);
        await page.click("#object-paint");
        await page.waitForSelector("#painter[open]");
        await page.focus("#painter-paint");
        const found = [];
        for (let step = 0; step < 7; step++) {
            const { id, name } = await focused(page);
            found.push(id || name);
            await page.keyboard.press("Tab");
        }
        assert.deepEqual(found, ["painter-paint", "Paint", "brush-size", "painter-undo",
            "painter-clear", "painter-cancel", "painter-use"]);
        await page.keyboard.press("Escape");
        await page.waitForSelector("#painter:not([open])");
        assert.equal((await focused(page)).id, "object-paint");
        await closePage(page);
    });

    for (const dark of [false, true]) {
        const scheme = dark ? "dark" : "light";
        test(`is easy to read, ${scheme}`, async () => {
            const page = await openPage(place, { dark });
            const check = async () => {
                const { ratio, text } = await lowestContrast(page);
                assert.ok(ratio >= 4.5, `"${text}" has a contrast of ${ratio}`);
            };
            await check();
            await screenshot(page, `opened ${scheme}`);
            for (const [top, words] of [[0, /^Cut off/], [-300, /^Outside/]]) {
                await page.focus("#object");
                await page.keyboard.down("Shift");
                while ((await shown(page)).placement.y > top) {
                    const { placement: { y } } = await shown(page);
                    await page.keyboard.press("ArrowUp");
                    if ((await settled(page)).placement.y === y) break; // no further
                }
                await page.keyboard.up("Shift");
                assert.match(await wordsOf(page), words);
                await check();
            }
            await page.click("#object-paint");
            await page.waitForSelector("#painter[open]");
            await check();
            await screenshot(page, `painter ${scheme}`);
            await closePage(page);
        });
    }

    test("shows before and after on the two sides of a divider", async () => {
        const page = await openPage(place);
        const blend = await canvasPixels(page);
        await page.focus("#object");
        await page.keyboard.down("Shift");
        for (let step = 0; step < 10; step++) await page.keyboard.press("ArrowLeft");
        await page.keyboard.up("Shift");
        await shownOnce(page, ({ placement: { x } }) => x === 650);
        const elsewhere = await canvasPixels(page);
        await page.click("#undo");
        await shownOnce(page, ({ placement: { x } }) => x === 750);
        await page.click("#compare");
        await page.waitForFunction(() => document.getElementById("before").width === 1280);
        const photo = await canvasPixels(page, "#before");
        assert.notEqual(difference(blend, photo), null);
        assert.equal(difference(await canvasPixels(page), blend), null);
        await page.focus("#divider");
        for (let step = 0; step < 10; step++) await page.keyboard.press("ArrowRight");
        const clip = await page.$eval("#before", (canvas) => getComputedStyle(canvas).clipPath);
        assert.match(clip, /40%/);
        await screenshot(page, "before and after");
        // The canvas keeps no trace of the place that the object leaves now.
        await page.click("#redo");
        await shownOnce(page, ({ placement: { x } }) => x === 650);
        assert.equal(difference(await canvasPixels(page), elsewhere), null);
        await page.click("#compare");
        assert.equal(await page.$eval("#before", (canvas) => canvas.width), 0);
        await closePage(page);
    });

    test("does the same without a worker that can draw", async () => {
        const usual = await openPage(place);
        const expected = await canvasPixels(usual);
        await closePage(usual);
        const page = await openPage(place, { prepare: (page) => page.evaluateOnNewDocument(() => {
            delete HTMLCanvasElement.prototype.transferControlToOffscreen;
            // Some such browsers do not know this way to turn pictures upright either.
            const decode = globalThis.createImageBitmap;
            globalThis.createImageBitmap = async (source, options) => {
                if (options?.imageOrientation === "from-image") throw new TypeError("no value");
                return decode(source, options);
            };
        }) });
        assert.equal(page.workers().length, 0);
        assert.equal(difference(await canvasPixels(page), expected), null);
        const { x, y } = await middleOf(page, "#object");
        await page.mouse.move(x, y);
        await page.mouse.down();
        await page.mouse.move(x + 60, y, { steps: 3 });
        await page.mouse.up();
        await shownOnce(page, ({ placement }) => placement.x > 760);
        await closePage(page);
    });

    test("says in words when the blend cannot be loaded", async () => {
        const broken = await startBrowser();
        try {
            rmSync(join(broken.folder, "page", "imageblend", "imageblend.wasm"));
            const page = await broken.browser.newPage();
            await page.goto(broken.address);
            assert.match(await noticeOf(page), /could not be loaded/);
            assert.equal(await wordsOf(page), "No picture");
        } finally {
            await broken.close();
        }
    });
});
