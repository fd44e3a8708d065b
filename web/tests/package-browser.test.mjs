// SPDX-License-Identifier: Apache-2.0
// The lines of both READMEs in a page, in the browser that CHROMIUM names: the bytes of Node.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import test, { after, before } from "node:test";
import { PNG } from "pngjs";
import puppeteer from "puppeteer-core";
import { blend } from "../lib/index.js";
import { assertSame, ellipse, marked, picture } from "./scenes.mjs";

const read = (path) => readFileSync(new URL(path, import.meta.url));
const chromium = process.env.CHROMIUM;
const inBrowser = { skip: chromium ? false : "CHROMIUM is not set" };

// Lines of the JavaScript blocks of a README.
const blocks = (path) => [...read(path).toString().matchAll(/^```js\n(.*?)^```$/gms)]
    .map(([, lines]) => lines);
const [page, , dragging] = blocks("../README.md");
const [short] = blocks("../../README.md");

const vase = marked(1, 160, 120, ellipse(160, 120, 80, 60, 34, 23)), dunes = picture(2, 900, 700);
const grey = { width: 160, height: 120, data: Uint8Array.from({ length: 160 * 120 * 4 },
    (_, i) => ((i & 3) === 3 ? 255 : vase.mask.data[i >> 2])) };
const asPng = ({ data, width, height }) =>
    PNG.sync.write(Object.assign(new PNG(), { data: Buffer.from(data), width, height }));

// Under the names of the README, whatever they say of the kind of file.
const files = new Map([["vase.jpg", vase.picture], ["vase-mask.png", grey], ["dunes.jpg", dunes]]);
const kinds = { js: "text/javascript", wasm: "application/wasm" };

const loading = page.slice(page.indexOf("async function"), page.indexOf("const vase"));
const prelude = `
    ${loading}
    const canvas = document.querySelector("canvas"), context = canvas.getContext("2d");
    const dunes = await load("dunes.jpg"), picture = await load("vase.jpg");
    const mask = await load("vase-mask.png");
    [canvas.width, canvas.height] = [dunes.width, dunes.height];
    context.putImageData(dunes, 0, 0);`;
// With what the lines take for granted.
function complete(lines, given) {
    const [imports, ...rest] = lines.split("\n");
    return [imports, prelude, given, ...rest].join("\n");
}
const scripts = {
    page,
    inside: page.replace('"imageblend"', '"imageblend/inline"'),
    short: complete(short, ""),
    dragging: `${complete(dragging, "const photo = dunes;")}
        for (let x = 300; x <= 640; x += 20) draw(x, 535);
        draw(-9000, 0);`,
};

function answer({ url }, response) {
    const name = url.slice(1), extension = name.split(".").pop();
    if (scripts[name]) {
        response.setHeader("Content-Type", "text/html");
        response.setHeader("Content-Security-Policy",
            "script-src 'self' 'unsafe-inline' 'wasm-unsafe-eval'");
        response.end(`<!doctype html><canvas></canvas><script type="importmap">{ "imports": {
            "imageblend": "/lib/index.js", "imageblend/inline": "/lib/inline.js" } }</script>
            <script type="module">${scripts[name]}; document.title = "done"</script>`);
    } else if (files.has(name)) {
        response.setHeader("Content-Type", "image/png");
        response.end(asPng(files.get(name)));
    } else if (/^lib\/[a-z]+\.(js|wasm)$/.test(name)) {
        response.setHeader("Content-Type", kinds[extension]);
        response.end(read(`../${name}`));
    } else {
        response.writeHead(404).end();
    }
}

let browser, address;
const server = createServer(answer);
before(async () => {
    if (!chromium) return;
    await new Promise((started) => server.listen(0, "127.0.0.1", started));
    address = `http://127.0.0.1:${server.address().port}`;
    browser = await puppeteer.launch({ executablePath: chromium, args: ["--no-sandbox"],
        timeout: 120000, protocolTimeout: 120000 });
});
after(async () => {
    await browser?.close();
    server.close();
});

async function show(name) {
    const tab = await browser.newPage(), errors = [];
    tab.on("pageerror", (error) => errors.push(error.message));
    await tab.goto(`${address}/${name}`, { timeout: 120000 });
    await tab.waitForFunction(() => document.title === "done", { timeout: 120000 })
        .catch((error) => assert.fail(`${name}: ${errors.join() || error.message}`));
    const [width, height, text] = await tab.evaluate(() => {
        const canvas = document.querySelector("canvas");
        const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
        let text = "";
        for (let i = 0; i < data.length; i += 8192) {
            text += String.fromCharCode(...data.subarray(i, i + 8192));
        }
        return [canvas.width, canvas.height, btoa(text)];
    });
    await tab.close();
    return { data: Uint8ClampedArray.from(Buffer.from(text, "base64")), width, height };
}

test("the lines of the READMEs draw in a page what they give in Node", inBrowser, async () => {
    const place = { x: 640, y: 535 };
    const zoomed = await blend(vase, dunes, { ...place, zoom: 0.75 });
    for (const name of ["page", "inside", "short"]) assertSame(await show(name), zoomed, name);
    assertSame(await show("dragging"), await blend(vase, dunes, place), "dragging");
});
