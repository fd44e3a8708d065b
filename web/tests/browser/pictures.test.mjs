// SPDX-License-Identifier: Apache-2.0
// What the page shows and saves is what the package computes in Node and the command line natively,
// byte for byte, from pictures without loss. IMAGEBLEND_TOOL names the command line.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { copyFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { fileURLToPath } from "node:url";
import { Blender } from "../../lib/index.js";
import { canvasPixels, choose, closePage, download, missing, openPage, settled, shown, shownOnce,
    slide, startBrowser } from "./browser.mjs";
import { cutOutDisc, difference, ground, readPng, writePng } from "./files.mjs";

const examples = fileURLToPath(new URL("../../../examples/", import.meta.url));
const tool = process.env.IMAGEBLEND_TOOL;

/** What Node makes of the same scene. */
async function blended({ photo, picture, mask }, placement, options) {
    const blender = await Blender.create();
    blender.setPhoto(photo);
    blender.setObject(mask ? { picture, mask } : picture);
    const { data, width, height } = blender.blend(placement, options);
    const copy = { data: data.slice(), width, height };
    blender.dispose();
    return copy;
}

describe("pictures of the page", { skip: missing() }, () => {
    let place;
    let page;
    let example;

    /** An example's picture as the browser decodes it, also left as a file without loss. */
    async function decoded(name) {
        await page.evaluate(async (address) => {
            const bitmap = await createImageBitmap(await (await fetch(address)).blob());
            const canvas = document.body.appendChild(document.createElement("canvas"));
            Object.assign(canvas, { id: "decoded", width: bitmap.width, height: bitmap.height });
            canvas.getContext("2d").drawImage(bitmap, 0, 0);
        }, `examples/${name}.jpg`);
        const pixels = await canvasPixels(page, "#decoded");
        await page.$eval("#decoded", (canvas) => canvas.remove());
        writePng(join(place.folder, `${name}.png`), pixels);
        return pixels;
    }

    before(async () => {
        place = await startBrowser();
        page = await openPage(place);
        example = {
            photo: await decoded("lake"),
            picture: await decoded("balloon"),
            mask: readPng(join(examples, "balloon-mask.png")),
        };
        copyFileSync(join(examples, "balloon-mask.png"), join(place.folder, "balloon-mask.png"));
    });

    after(async () => {
        await closePage(page);
        await place.close();
    });

    test("equal the module's in Node, scaled, turned, with surroundings and plain", async () => {
        const opened = await settled(page);
        assert.deepEqual(opened.placement, { x: 750, y: 215, zoom: 0.65, angle: 0 });
        const look = async (options) => {
            const { placement } = await shown(page);
            const expected = await blended(example, placement, options);
            assert.equal(difference(await canvasPixels(page), expected), null);
        };
        await look({});
        await slide(page, "#turn", -37);
        await slide(page, "#size", 550);
        await shownOnce(page, ({ placement }) => placement.angle === 37 && placement.zoom < 0.5);
        await look({});
        await slide(page, "#surroundings", 20);
        await shownOnce(page, ({ surroundings }) => surroundings === 20);
        await look({ surroundings: 20 });
        await page.focus("#plain");
        await page.keyboard.down(" ");
        await shownOnce(page, ({ kind }) => kind === "plain");
        await look({ mode: "plain" });
        await page.keyboard.up(" ");
        await shownOnce(page, ({ kind }) => kind === "blend");
        await look({ surroundings: 20 });
    });

    test("equal the command line's", { skip: !tool && "IMAGEBLEND_TOOL is not set" }, async () => {
        await slide(page, "#turn", 0);
        await slide(page, "#surroundings", 0);
        await slide(page, "#size", 667);
        const { placement } = await shownOnce(page, ({ placement: { zoom, angle } }) =>
            zoom === 1 && angle === 0);
        const at = `${placement.x},${placement.y}`;
        execFileSync(tool, ["blend", "balloon.png", "lake.png", "native.png", "--mask",
            "balloon-mask.png", "--at", at], { cwd: place.folder });
        const native = readPng(join(place.folder, "native.png"));
        assert.equal(difference(await canvasPixels(page), native), null);
    });

    test("are saved at full size without loss where the photo is a PNG file", async () => {
        const [photo, picture] = [ground(700, 500), cutOutDisc(160)];
        await choose(page, "photo", writePng(join(place.folder, "Ground 1.png"), photo));
        await shownOnce(page, ({ photo: name }) => name === "Ground 1.png");
        await choose(page, "object", writePng(join(place.folder, "disc.png"), picture));
        const { placement } = await shownOnce(page, ({ object }) => object === "disc.png");
        const { name, bytes } = await download(page, place.folder);
        assert.equal(name, "Ground 1-blended.png");
        const expected = await blended({ photo, picture }, placement, {});
        assert.equal(difference(readPng(bytes), expected), null);
    });

    test("of 24 megapixels are shown smaller and saved at full size", async () => {
        const [photo, picture] = [ground(6000, 4000), cutOutDisc(900)];
        await choose(page, "photo", writePng(join(place.folder, "large.png"), photo));
        await shownOnce(page, ({ photo: name }) => name === "large.png");
        await choose(page, "object", writePng(join(place.folder, "big disc.png"), picture));
        const { placement } = await shownOnce(page, ({ object }) => object === "big disc.png");
        const preview = await page.$eval("#result", ({ width, height }) => ({ width, height }));
        assert.ok(preview.width * preview.height <= 12e6, "the preview is scaled");
        assert.ok(preview.width * preview.height > 11.9e6, "the preview is as large as it may be");
        const { bytes } = await download(page, place.folder);
        const saved = readPng(bytes);
        const expected = await blended({ photo, picture }, placement, {});
        assert.equal(difference(saved, expected), null);
        assert.notEqual(difference(saved, photo), null);
    });
});
