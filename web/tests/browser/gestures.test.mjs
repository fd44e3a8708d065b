// SPDX-License-Identifier: Apache-2.0
// The object by mouse, wheel, fingers and keys; the verdict; undo.

import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, test } from "node:test";
import { closePage, middleOf, missing, noticeOf, openPage, screenshot, settled, shown, shownOnce,
    slide, startBrowser } from "./browser.mjs";

/** Pixels of the photo for each of the screen. */
const photoScale = (page) => page.$eval("#picture", (picture) => 1280 / picture.clientWidth);

const near = (value, wanted, within) =>
    assert.ok(Math.abs(value - wanted) <= within, `${value} is not within ${within} of ${wanted}`);

async function dragBy(page, from, x, y) {
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    for (let step = 1; step <= 5; step++) {
        await page.mouse.move(from.x + (x * step) / 5, from.y + (y * step) / 5);
    }
    await page.mouse.up();
}

const verdict = (page) => page.$eval("#object", (object) => object.dataset.verdict);
const frameColour = (page) =>
    page.$eval("#object", (object) => getComputedStyle(object, "::before").borderTopColor);

describe("the object", { skip: missing() }, () => {
    let place;
    let page;

    before(async () => (place = await startBrowser()));
    after(() => place.close());
    beforeEach(async () => (page = await openPage(place)));
    afterEach(() => closePage(page));

    test("is dragged, and one undo brings it back", async () => {
        const scale = await photoScale(page);
        const { placement } = await shown(page);
        await dragBy(page, await middleOf(page, "#object"), -120, 200);
        const moved = await shownOnce(page, ({ placement: { x } }) => x < placement.x - 100);
        near(moved.placement.x, placement.x - 120 * scale, 1);
        near(moved.placement.y, placement.y + 200 * scale, 1);
        await page.click("#undo");
        await shownOnce(page, ({ placement: { x } }) => x === placement.x);
        await page.click("#redo");
        await shownOnce(page, ({ placement: { x } }) => x === moved.placement.x);
    });

    test("stays where it is when the photo beside it is dragged", async () => {
        const before = await shown(page);
        const corner = await (await page.$("#picture")).boundingBox();
        await dragBy(page, { x: corner.x + 40, y: corner.y + 400 }, 100, 30);
        assert.deepEqual(await settled(page), before);
        const selected = await page.$eval("#picture", (picture) =>
            picture.classList.contains("selected"));
        assert.equal(selected, false);
    });

    test("grows and shrinks with the wheel, about its middle", async () => {
        const { placement } = await shown(page);
        const middle = await middleOf(page, "#object");
        await page.mouse.move(middle.x, middle.y);
        await page.mouse.wheel({ deltaY: -100 });
        const larger = await shownOnce(page, (scene) =>
            scene.placement.zoom > placement.zoom * 1.1);
        assert.deepEqual([larger.placement.x, larger.placement.y], [placement.x, placement.y]);
        await page.mouse.wheel({ deltaY: 200 });
        await shownOnce(page, ({ placement: { zoom } }) => zoom < placement.zoom * 0.9);
    });

    test("grows in the smallest steps from any size", async () => {
        const zoomAfter = async (start, act, factor) => {
            await slide(page, "#size", start);
            const { placement: { zoom } } = await settled(page);
            await act();
            await shownOnce(page, (scene) => scene.placement.zoom > zoom * 1.01);
            near((await settled(page)).placement.zoom / zoom, factor, 0.01 * factor);
        };
        await page.focus("#object");
        await zoomAfter(0, async () => {
            for (let step = 0; step < 20; step++) await page.keyboard.press("+");
        }, 1.02 ** 20);
        const turnWheel = (deltaY) => () => page.evaluate((deltaY) => {
            for (let step = 0; step < 500; step++) {
                document.getElementById("object").dispatchEvent(
                    new WheelEvent("wheel", { deltaY, bubbles: true, cancelable: true }));
            }
        }, deltaY);
        for (const pixels of [1, 0.1]) {
            await zoomAfter(490, turnWheel(-pixels), 1.0015 ** (500 * pixels));
        }
    });

    test("turns by its handle, in steps with shift", async () => {
        const handle = await middleOf(page, "#handle");
        const middle = await middleOf(page, "#object");
        const arm = middle.y - handle.y;
        await page.mouse.move(handle.x, handle.y);
        await page.mouse.down();
        await page.mouse.move(middle.x - arm, middle.y, { steps: 6 });
        const turned = await shownOnce(page, ({ placement: { angle } }) => angle > 80);
        near(turned.placement.angle, 90, 1.5);
        await page.keyboard.down("Shift");
        await page.mouse.move(middle.x - arm, middle.y - arm * 0.9);
        await page.keyboard.up("Shift");
        await shownOnce(page, ({ placement: { angle } }) => angle === 45);
        await page.mouse.up();
        await screenshot(page, "turned");
    });

    test("moves, grows and turns by keys", async () => {
        const { placement } = await shown(page);
        await page.focus("#object");
        for (const key of ["ArrowRight", "ArrowRight", "ArrowUp", "+", "+", "-", ".", ".", ","]) {
            await page.keyboard.press(key);
        }
        const moved = await shownOnce(page, ({ placement: { angle } }) => angle === -1);
        assert.equal(moved.placement.x, placement.x + 2);
        assert.equal(moved.placement.y, placement.y - 1);
        near(moved.placement.zoom, placement.zoom * 1.02, 0.002);
        await page.keyboard.down("Shift");
        await page.keyboard.press("ArrowDown");
        await page.keyboard.up("Shift");
        await shownOnce(page, ({ placement: { y } }) => y === placement.y + 9);
        await page.keyboard.down("Control");
        await page.keyboard.press("z");
        await page.keyboard.up("Control");
        await shownOnce(page, (scene) => scene.placement.y === placement.y);
    });

    test("has a frame in the colour of the verdict, and words for it", async () => {
        const words = () => page.$eval("#verdict", (element) => element.textContent);
        assert.equal(await verdict(page), "fits");
        const colours = [await frameColour(page)];
        const picture = await (await page.$("#picture")).boundingBox();
        const from = await middleOf(page, "#object");
        await dragBy(page, from, picture.x - from.x, 0);
        await shownOnce(page, ({ placement: { x } }) => Math.abs(x) < 3);
        assert.equal(await verdict(page), "cut");
        assert.equal(await words(), "Cut off at the left");
        colours.push(await frameColour(page));
        await screenshot(page, "cut off");
        await page.focus("#object");
        await page.keyboard.down("Shift");
        for (let step = 0; step < 30; step++) await page.keyboard.press("ArrowLeft");
        await page.keyboard.up("Shift");
        await shownOnce(page, ({ placement: { x } }) => x < -50);
        assert.equal(await verdict(page), "refused");
        assert.equal(await words(), "Outside of the photo");
        colours.push(await frameColour(page));
        assert.equal(new Set(colours).size, 3);
        await screenshot(page, "refused");
        await page.click("#download");
        assert.match(await noticeOf(page), /outside of the photo/);
    });

});

describe("the object under fingers", { skip: missing() }, () => {
    let place;
    let page;

    before(async () => (place = await startBrowser()));
    after(() => place.close());
    beforeEach(async () => {
        page = await openPage(place, { touch: true, width: 390, height: 844 });
    });
    afterEach(() => closePage(page));

    test("follows two of them: size, turn and place", async () => {
        const { placement } = await shown(page);
        const scale = await photoScale(page);
        const { x, y } = await middleOf(page, "#object");
        const client = await page.createCDPSession();
        const touch = (type, points) => client.send("Input.dispatchTouchEvent", { type,
            touchPoints: points.map(([dx, dy], id) => ({ x: x + dx, y: y + dy, id })) });
        await touch("touchStart", [[-20, 0]]);
        await touch("touchStart", [[-20, 0], [20, 0]]);
        for (let step = 1; step <= 4; step++) {
            await touch("touchMove", [[-20 - 5 * step, 0], [20 + 5 * step, 0]]);
        }
        const grown = await shownOnce(page, (scene) =>
            scene.placement.zoom > placement.zoom * 1.9);
        near(grown.placement.zoom, placement.zoom * 2, 0.01);
        assert.equal(grown.placement.angle, 0);
        near(grown.placement.x, placement.x, 1);
        for (let step = 1; step <= 6; step++) {
            const turn = (step * Math.PI) / 12;
            const [dx, dy] = [40 * Math.cos(turn), 40 * Math.sin(turn)];
            await touch("touchMove", [[-dx, -dy + 30], [dx, dy + 30]]);
        }
        const turned = await shownOnce(page, ({ placement: { angle } }) => angle < -85);
        near(turned.placement.angle, -90, 1);
        near(turned.placement.y, placement.y + 30 * scale, 2);
        await touch("touchEnd", []);
        await page.tap("#undo");
        await shownOnce(page, (scene) => scene.placement.zoom === placement.zoom);
    });

    test("is dragged by one while the page stays", async () => {
        const { placement } = await shown(page);
        const { x, y } = await middleOf(page, "#object");
        await page.touchscreen.touchStart(x, y);
        for (let step = 1; step <= 4; step++) await page.touchscreen.touchMove(x, y + 20 * step);
        await page.touchscreen.touchEnd();
        const moved = await shownOnce(page, (scene) => scene.placement.y > placement.y + 50);
        near(moved.placement.y, placement.y + 80 * await photoScale(page), 2);
        assert.equal(await page.evaluate(() => scrollY), 0);
    });
});
