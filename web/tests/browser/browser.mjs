// SPDX-License-Identifier: Apache-2.0
// A browser with the page of the playground in it, served on this machine from a sub-path.
// CHROMIUM names the browser. Screenshots go to the folder that IMAGEBLEND_SCREENSHOTS names.

import assert from "node:assert/strict";
import { existsSync, mkdirSync, mkdtempSync, readFileSync, readdirSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { assemble } from "../../playground/assemble.mjs";
import { serve } from "../../playground/serve.mjs";
import { difference } from "./files.mjs";

const chromium = process.env.CHROMIUM ?? "/usr/bin/chromium";
const fromHere = (path) => fileURLToPath(new URL(path, import.meta.url));
const module = fromHere("../../lib/imageblend.wasm");
const puppeteer = fromHere("../../node_modules/puppeteer-core");
const screenshots =
    process.env.IMAGEBLEND_SCREENSHOTS ?? fromHere("../../../build-web/screenshots");

/** Milliseconds: no wait is that long, so what takes longer hangs. */
const LONGEST_WAIT = 120_000;

/** The reason why nothing can be tested here, or false. */
export function missing() {
    if (!existsSync(chromium)) return `${chromium} is not there`;
    if (!existsSync(module)) return "web/lib/imageblend.wasm is not there: node web/collect.mjs";
    if (!existsSync(puppeteer)) return "puppeteer-core is not there: npm ci in web";
    return false;
}

const switches = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"];

/** Serves the page and starts a browser: { browser, address, folder, close }. */
export async function startBrowser({ prefix = "/some/where/" } = {}) {
    const { launch } = await import("puppeteer-core");
    const folder = mkdtempSync(join(tmpdir(), "imageblend-browser-"));
    await assemble(join(folder, "page"));
    const { server, address } = await serve(join(folder, "page"), { prefix });
    const browser = await launch({
        executablePath: chromium,
        headless: true,
        timeout: LONGEST_WAIT,
        args: [...switches, `--user-data-dir=${join(folder, "profile")}`],
    });
    const close = async () => {
        await browser.close();
        server.closeAllConnections?.();
        server.close();
        rmSync(folder, { recursive: true, force: true, maxRetries: 5, retryDelay: 200 });
    };
    return { browser, address, folder, close };
}

/** Opens the page and waits for its first blend. Any error or foreign request fails the test. */
export async function openPage({ browser, address }, options = {}) {
    const { width = 1280, height = 800, touch = false, dark = false, prepare } = options;
    const page = await browser.newPage();
    page.setDefaultTimeout(LONGEST_WAIT);
    page.faults = [];
    page.on("pageerror", (error) => page.faults.push(error.message));
    page.on("console", (line) => line.type() === "error" && page.faults.push(line.text()));
    page.on("request", (request) => {
        const own = request.url().startsWith(address) || /^(blob|data):/.test(request.url());
        if (!own) page.faults.push(`asks for ${request.url()}`);
    });
    await page.setViewport({ width, height, hasTouch: touch, isMobile: touch });
    await page.emulateMediaFeatures([
        { name: "prefers-color-scheme", value: dark ? "dark" : "light" },
        { name: "prefers-reduced-motion", value: "reduce" },
    ]);
    await prepare?.(page);
    assert.equal((await page.goto(address)).status(), 200);
    await settled(page);
    return page;
}

export async function closePage(page) {
    assert.deepEqual(page.faults, []);
    await page.close();
}

/** Waits until the picture shows what it is meant to, and returns that. */
export async function settled(page) {
    await page.waitForFunction(() => {
        const { wants, shows } = document.getElementById("picture").dataset;
        const busy = document.getElementById("picture").getAttribute("aria-busy") === "true";
        return wants !== undefined && wants === shows && !busy;
    }, { polling: 10, timeout: LONGEST_WAIT });
    return shown(page);
}

/** What the picture shows. */
export async function shown(page) {
    const line = await page.$eval("#picture", (picture) => picture.dataset.shows);
    const [photo, object, x, y, zoom, angle, surroundings, kind] = line.split("|");
    return { photo, object, surroundings: Number(surroundings), kind,
        placement: { x: Number(x), y: Number(y), zoom: Number(zoom), angle: Number(angle) } };
}

/** What the picture should show in a moment: waits until `wanted` finds it so. */
export async function shownOnce(page, wanted) {
    for (let attempt = 0; attempt < 500; attempt++) {
        const scene = await settled(page);
        if (wanted(scene)) return scene;
        await pause(10);
    }
    return assert.fail(`the picture still shows ${JSON.stringify(await shown(page))}`);
}

export const pause = (milliseconds) => new Promise((done) => setTimeout(done, milliseconds));

/** The sentence over the picture, once there is one. */
export async function noticeOf(page) {
    await page.waitForSelector("#notice:not([hidden])", { timeout: LONGEST_WAIT });
    return page.$eval("#notice-text", (text) => text.textContent);
}

/** The middle of an element on the screen. */
export async function middleOf(page, selector) {
    const box = await (await page.$(selector)).boundingBox();
    return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
}

/** Waits until the page had the time to take over what its worker has drawn. */
async function presented(page) {
    const twoFrames = () =>
        new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    for (const place of [...page.workers(), page]) await place.evaluate(twoFrames);
}

async function readCanvas(page, selector) {
    await presented(page);
    const { width, height, text } = await page.$eval(selector, (canvas) => {
        const { width, height } = canvas;
        const copy = new OffscreenCanvas(width, height).getContext("2d");
        copy.drawImage(canvas, 0, 0);
        const { data } = copy.getImageData(0, 0, width, height);
        let text = "";
        for (let at = 0; at < data.length; at += 30_000) {
            text += btoa(String.fromCharCode(...data.subarray(at, at + 30_000)));
        }
        return { width, height, text };
    });
    return { width, height, data: new Uint8ClampedArray(Buffer.from(text, "base64")) };
}

/** The pixels of a canvas of the page, once they stay: a worker's frames come late. */
export async function canvasPixels(page, selector = "#result") {
    for (let last = await readCanvas(page, selector); ;) {
        const next = await readCanvas(page, selector);
        if (difference(next, last) === null) return next;
        last = next;
    }
}

/** Gives a file to one of the page's inputs. */
export async function choose(page, kind, path) {
    await (await page.$(`#${kind}-file`)).uploadFile(path);
}

/** Sets a slider as a drag of its thumb does. */
export async function slide(page, selector, value) {
    await page.$eval(selector, (slider, to) => {
        slider.value = to;
        slider.dispatchEvent(new Event("input", { bubbles: true }));
        slider.dispatchEvent(new Event("change", { bubbles: true }));
    }, value);
}

/** Presses the button and returns the file that comes: { name, bytes }. */
export async function download(page, folder) {
    const place = mkdtempSync(join(folder, "downloads-"));
    const client = await page.createCDPSession();
    await client.send("Browser.setDownloadBehavior", {
        behavior: "allow", downloadPath: place, eventsEnabled: true,
    });
    const done = new Promise((resolve, reject) => {
        const limit = setTimeout(() => reject(new Error("no file comes")), LONGEST_WAIT);
        client.on("Browser.downloadProgress", ({ state }) => {
            if (state === "inProgress") return;
            clearTimeout(limit);
            if (state === "completed") resolve();
            else reject(new Error(`the download is ${state}`));
        });
    });
    await Promise.all([done, page.click("#download")]);
    const [name] = readdirSync(place);
    return { name, bytes: readFileSync(join(place, name)) };
}

/** Keeps what the page looks like for the reader of the test's output. */
export async function screenshot(page, name) {
    mkdirSync(screenshots, { recursive: true });
    await page.screenshot({ path: join(screenshots, `${name}.png`) });
}
