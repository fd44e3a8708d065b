// SPDX-License-Identifier: Apache-2.0
// Files that are dropped, chosen and broken; masks that are painted.

import assert from "node:assert/strict";
import { readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, afterEach, before, beforeEach, describe, test } from "node:test";
import { canvasPixels, choose, closePage, download, middleOf, missing, noticeOf, openPage, pause,
    screenshot, settled, shown, shownOnce, startBrowser } from "./browser.mjs";
import { cutOutDisc, difference, drawn, ground, writePng } from "./files.mjs";

/** Drags a file over the page and drops it on a zone. */
async function drop(page, kind, name, bytes, type = "image/png") {
    await page.evaluate((kind, name, text, type) => {
        const data = new DataTransfer();
        const content = Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
        data.items.add(new File([content], name, { type }));
        const send = (target, event) => target.dispatchEvent(new DragEvent(event,
            { dataTransfer: data, bubbles: true, cancelable: true }));
        send(document.body, "dragenter");
        send(document.body, "dragleave"); // as some browsers do, without saying where to
        send(document.body, "dragover");
        const zone = document.querySelector(`.zone[data-kind=${kind}]`);
        const open = document.querySelector("dialog[open]") !== null;
        if (open === zone.getClientRects().length > 0) throw new Error("the zones are wrong");
        send(zone, "dragover");
        send(zone, "drop");
    }, kind, name, bytes.toString("base64"), type);
}

describe("files", { skip: missing() }, () => {
    let place;
    let page;
    let file;

    before(async () => {
        place = await startBrowser({ prefix: "/" });
        file = (name, picture) => writePng(join(place.folder, name), picture);
    });
    after(() => place.close());
    beforeEach(async () => (page = await openPage(place)));
    afterEach(() => closePage(page));

    test("are dropped as photo and as object, and undo brings the old ones back", async () => {
        const { placement } = await shown(page);
        await drop(page, "photo", "sea.png", readFileSync(file("sea.png", ground(640, 800))));
        const first = await shownOnce(page, ({ photo }) => photo === "sea.png");
        assert.deepEqual([first.placement.x, first.placement.y], [320, 400]);
        await drop(page, "object", "disc.png", readFileSync(file("disc.png", cutOutDisc(200))));
        await shownOnce(page, ({ object }) => object === "disc.png");
        const shape = await page.$eval("#picture", ({ clientWidth, clientHeight }) =>
            clientWidth / clientHeight);
        assert.ok(Math.abs(shape - 0.8) < 0.01, `the picture's shape is ${shape}`);
        assert.equal(await page.$eval("#surroundings", (slider) => slider.disabled), true);
        await screenshot(page, "dropped");
        await page.click("#undo");
        await shownOnce(page, ({ object }) => object === "balloon.jpg");
        await page.click("#undo");
        const back = await shownOnce(page, ({ photo }) => photo === "lake.jpg");
        assert.deepEqual(back.placement, placement);
    });

    test("that are no pictures are refused in words, and the scene stays", async () => {
        const before = await shown(page);
        await drop(page, "photo", "notes.txt", Buffer.from("no picture"), "text/plain");
        assert.match(await noticeOf(page), /^“notes\.txt” is not a picture that/);
        await screenshot(page, "error");
        await page.click("#notice-close");
        const broken = join(place.folder, "broken.png");
        writeFileSync(broken, readFileSync(file("whole.png", ground(60, 60))).subarray(0, 60));
        await choose(page, "object", broken);
        assert.match(await noticeOf(page), /^“broken\.png” is not a picture/);
        assert.deepEqual(await settled(page), before);
        await page.focus("#object");
        await page.keyboard.press("ArrowLeft");
        await shownOnce(page, ({ placement: { x } }) => x === before.placement.x - 1);
    });

    test("a drop of what is no file is said to be none", async () => {
        await page.evaluate(() => document.body.dispatchEvent(new DragEvent("drop",
            { dataTransfer: new DataTransfer(), bubbles: true, cancelable: true })));
        assert.match(await noticeOf(page), /not a file/);
    });

    test("a picture without a mask is painted on, by pointer, with undo and erasing", async () => {
        const blot = drawn(400, 300, (x, y) =>
            (Math.hypot(x - 200, y - 150) < 60 ? [210, 40, 30, 255] : [90, 140, 90, 255]));
        await drop(page, "object", "blot.png", readFileSync(file("blot.png", blot)));
        await page.waitForSelector("#painter[open]");
        const { x, y } = await middleOf(page, "#painter-paint");
        const stroke = async (dy) => {
            await page.mouse.move(x - 60, y + dy);
            await page.mouse.down();
            await page.mouse.move(x + 60, y + dy, { steps: 4 });
            await page.mouse.up();
        };
        const marked = () => page.$eval("#painter-paint", (canvas) => {
            const { width, height } = canvas;
            const { data } = canvas.getContext("2d").getImageData(0, 0, width, height);
            return data.filter((value, at) => at % 4 === 3 && value > 127).length;
        });
        assert.equal(await marked(), 0);
        await stroke(0);
        const one = await marked();
        assert.ok(one > 500, `${one} pixels are marked`);
        await stroke(30);
        assert.ok(await marked() > one);
        await screenshot(page, "painter");
        await page.click("#painter-undo");
        assert.equal(await marked(), one);
        await page.click("input[name=tool][value=erase]");
        await stroke(0);
        assert.ok(await marked() < one / 10);
        await page.click("#painter-undo");
        await page.click("#painter-use");
        const { object } = await shownOnce(page, (scene) => scene.object === "blot.png");
        assert.equal(object, "blot.png");
        assert.ok(await page.$eval("#object", ({ clientWidth, clientHeight }) =>
            clientWidth > clientHeight * 1.5), "the object is the stroke, which is wide");
    });

    test("a mask is painted by keys; an empty one is refused in words", async () => {
        await page.focus("#object-paint");
        await page.keyboard.press("Enter");
        await page.waitForSelector("#painter[open]");
        await page.click("#painter-clear");
        await page.click("#painter-use");
        assert.match(await noticeOf(page), /Nothing is marked/);
        await page.click("#object-paint");
        await page.waitForSelector("#painter[open]");
        await page.click("#painter-clear");
        await page.focus("#painter-paint");
        await page.keyboard.down(" ");
        for (let step = 0; step < 8; step++) await page.keyboard.press("ArrowDown");
        await page.keyboard.up(" ");
        await page.keyboard.press("ArrowRight");
        await page.click("#painter-use");
        await page.waitForSelector("#painter:not([open])");
        await page.waitForFunction(() => {
            const { clientWidth, clientHeight } = document.getElementById("object");
            return clientHeight > clientWidth * 1.5;
        });
    });

    test("a second click before the painter opens does not begin anew", async () => {
        await page.evaluate(() => {
            const decode = createImageBitmap;
            let delay = 0;
            globalThis.createImageBitmap = async (...picture) => {
                await new Promise((done) => setTimeout(done, delay));
                return decode(...picture);
            };
            const button = document.getElementById("object-paint");
            button.click();
            delay = 500;
            button.click();
            delay = 0;
        });
        await page.waitForSelector("#painter[open]");
        await page.focus("#painter-paint");
        await page.keyboard.press(" ");
        await pause(700);
        assert.equal(await page.$eval("#painter-undo", (button) => button.ariaDisabled), "false");
    });

    test("a stroke that is taken back while it is drawn is over", async () => {
        await page.click("#object-paint");
        await page.waitForSelector("#painter[open]");
        const { x, y } = await middleOf(page, "#painter-paint");
        const marked = () => page.$eval("#painter-paint", (canvas) => canvas.getContext("2d")
            .getImageData(0, 0, canvas.width, canvas.height).data.some((value) => value > 0));
        for (const take of [
            () => page.$eval("#painter-clear", (button) => button.click()),
            async () => {
                await page.keyboard.down("Control");
                await page.keyboard.press("z");
                await page.keyboard.up("Control");
            },
        ]) {
            await page.mouse.move(x - 60, y);
            await page.mouse.down();
            await page.mouse.move(x, y, { steps: 3 });
            await take();
            await page.mouse.move(x + 60, y, { steps: 3 });
            await page.mouse.up();
            assert.equal(await marked(), false);
        }
        await page.keyboard.press("Escape");
    });

    test("behind the painter nothing changes, by keys or drops", async () => {
        await page.focus("#object");
        await page.keyboard.press("ArrowLeft");
        const before = await shownOnce(page, ({ placement: { x } }) => x === 749);
        await page.click("#undo");
        const undone = await shownOnce(page, ({ placement: { x } }) => x === 750);
        await page.click("#object-paint");
        await page.waitForSelector("#painter[open]");
        await page.keyboard.down("Control");
        await page.keyboard.press("y");
        await page.keyboard.down("Shift");
        await page.keyboard.press("Z");
        await page.keyboard.up("Shift");
        await page.keyboard.up("Control");
        await drop(page, "photo", "sea.png", readFileSync(file("sea.png", ground(640, 800))));
        await pause(300);
        assert.deepEqual(await settled(page), undone);
        await page.keyboard.press("Escape");
        await page.waitForSelector("#painter:not([open])");
        await page.click("#redo");
        await shownOnce(page, ({ placement: { x } }) => x === before.placement.x);
    });

    test("painting that is given up leaves the scene as it was", async () => {
        const before = await shown(page);
        await page.click("#object-paint");
        await page.waitForSelector("#painter[open]");
        await page.keyboard.press("Escape");
        await page.waitForSelector("#painter:not([open])");
        await pause(50);
        assert.deepEqual(await settled(page), before);
    });

    test("a photo that lost colours before is saved as JPEG", async () => {
        const { name, bytes } = await download(page, place.folder);
        assert.equal(name, "lake-blended.jpg");
        assert.deepEqual([...bytes.subarray(0, 3)], [0xff, 0xd8, 0xff]);
    });
});

describe("a page that something fails for", { skip: missing() }, () => {
    let place;

    before(async () => (place = await startBrowser({ prefix: "/" })));
    after(() => place.close());

    test("shows the old scene again after a photo that does not fit the memory", async () => {
        const page = await openPage(place, { prepare: (page) => page.evaluateOnNewDocument(() => {
            delete HTMLCanvasElement.prototype.transferControlToOffscreen;
        }) });
        const before = await canvasPixels(page);
        // The blender lets go of the old photo before it finds that the new one does not fit.
        await page.evaluate(async () => {
            const { Blender } = await import(new URL("imageblend/index.js", location.href).href);
            const { setPhoto } = Blender.prototype;
            Blender.prototype.setPhoto = function (photo) {
                if (photo.width !== 640) return setPhoto.call(this, photo);
                setPhoto.call(this, new ImageData(1, 1));
                throw Object.assign(new Error("too large"), { code: "memory" });
            };
        });
        const sea = writePng(join(place.folder, "sea.png"), ground(640, 800));
        await choose(page, "photo", sea);
        assert.match(await noticeOf(page), /not enough memory for “sea\.png”/);
        await page.click("#notice-close");
        await page.focus("#object");
        await page.keyboard.press("ArrowLeft");
        await page.keyboard.press("ArrowRight");
        await shownOnce(page, ({ placement: { x } }) => x === 750);
        await pause(300);
        assert.equal(difference(await canvasPixels(page), before), null);
        await closePage(page);
    });

    test("takes a photo and an object one by one where no example can be fetched", async () => {
        const page = await place.browser.newPage();
        const faults = [];
        page.on("pageerror", (error) => faults.push(error.message));
        rmSync(join(place.folder, "page", "examples"), { recursive: true });
        await page.goto(place.address);
        const words = (wanted) => page.waitForFunction((wanted) =>
            document.getElementById("verdict").textContent === wanted, {}, wanted);
        assert.match(await noticeOf(page), /could not be loaded/);
        await words("No picture");
        await page.click("#compare");
        assert.equal(await page.$eval("#compare", (button) => button.ariaPressed), "false");
        const disc = writePng(join(place.folder, "disc.png"), cutOutDisc(200));
        await choose(page, "object", disc);
        await words("No photo yet");
        const sea = writePng(join(place.folder, "sea.png"), ground(640, 800));
        await choose(page, "photo", sea);
        const { photo, object } = await shownOnce(page, ({ photo }) => photo === "sea.png");
        assert.deepEqual([photo, object], ["sea.png", "disc.png"]);
        await words("Fits");
        assert.deepEqual(faults, []);
        await page.close();
    });
});
