// SPDX-License-Identifier: Apache-2.0
// The package as it is handed out: packed, installed into an empty project, its types checked and
// its README's lines run.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { cpSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import test, { after } from "node:test";
import { fileURLToPath } from "node:url";
import { PNG } from "pngjs";
import { blend } from "../lib/index.js";
import { assertSame, ellipse, marked, picture } from "./scenes.mjs";

const web = fileURLToPath(new URL("..", import.meta.url));
const project = mkdtempSync(join(tmpdir(), "imageblend-project-"));
after(() => rmSync(project, { recursive: true }));

function run(command, ...words) {
    const done = spawnSync(command, words, { cwd: project, encoding: "utf8" });
    assert.equal(done.status, 0, `${command} ${words.join(" ")}: ${done.stdout}${done.stderr}`);
    return done.stdout;
}

const inProject = (name) => join(project, name);

// Lines of the blocks of a kind in a README.
const blocks = (path) => [...readFileSync(path, "utf8").matchAll(/^```js\n(.*?)^```$/gms)]
    .map(([, lines]) => lines);

test("what is packed is what a user needs, and can be installed", () => {
    const [packed] = JSON.parse(run("npm", "pack", web, "--json", "--ignore-scripts",
        "--loglevel=error"));
    const names = packed.files.map(({ path }) => path);
    const expected = /^(LICENSE|README\.md|package\.json|lib\/([a-z]+\.js|(index|inline)\.d\.ts|imageblend\.wasm))$/;
    assert.deepEqual(names.filter((name) => !expected.test(name)), []);
    for (const name of ["LICENSE", "README.md", "lib/imageblend.wasm", "lib/inline.js",
        "lib/bytes.js", "lib/index.d.ts", "lib/inline.d.ts"]) {
        assert.ok(names.includes(name), name);
    }
    writeFileSync(inProject("package.json"), '{ "private": true, "type": "module" }');
    // Nothing is fetched: it depends on nothing.
    run("npm", "install", packed.filename, "--offline", "--no-audit", "--no-fund",
        "--loglevel=error");
    assert.equal(readFileSync(inProject("node_modules/imageblend/LICENSE"), "utf8"),
        readFileSync(join(web, "../LICENSE"), "utf8"));
    const header = readFileSync(join(web, "../include/imageblend.h"), "utf8");
    const [major, minor, patch] = ["MAJOR", "MINOR", "PATCH"].map(
        (part) => header.match(new RegExp(`VERSION_${part} (\\d+)`))[1]);
    assert.equal(packed.version, `${major}.${minor}.${patch}`, "the header's version");
});

test("its types are those that it has", () => {
    cpSync(join(web, "tests/consumer.ts"), inProject("consumer.ts"));
    const check = (...options) => run(process.execPath, join(web, "node_modules/typescript/bin/tsc"),
        "--strict", "--exactOptionalPropertyTypes", "--module", "nodenext", "--target", "es2022",
        ...options, "consumer.ts");
    check("--noEmit", "--lib", "es2022");
    // With the types of a page a result is an ImageData.
    writeFileSync(inProject("page.ts"), `
        import { blend, type Picture } from "imageblend";
        declare const context: CanvasRenderingContext2D, photo: Picture;
        context.putImageData(await blend(photo, photo, { x: 1, y: 1 }), 0, 0);`);
    check("--noEmit", "--lib", "es2022,dom", "page.ts");
    check("--lib", "es2022", "--outDir", ".");
    // The lines that must not compile are no part of the program.
    const program = readFileSync(inProject("consumer.js"), "utf8");
    const wrong = program.search(/^\/\/ @ts-expect-error/m);
    writeFileSync(inProject("consumer.js"), program.slice(0, wrong > 0 ? wrong : undefined));
    run(process.execPath, "consumer.js");
});

test("the README's lines run in Node", async () => {
    cpSync(join(web, "node_modules/pngjs"), inProject("node_modules/pngjs"), { recursive: true });
    const vase = marked(1, 160, 120, ellipse(160, 120, 80, 60, 34, 23));
    const dunes = picture(2, 900, 700);
    const grey = { width: 160, height: 120, data: Uint8Array.from({ length: 160 * 120 * 4 },
        (_, i) => ((i & 3) === 3 ? 255 : vase.mask.data[i >> 2])) };
    for (const [name, { data, width, height }] of [["vase", vase.picture], ["vase-mask", grey],
        ["dunes", dunes]]) {
        const image = Object.assign(new PNG(), { data: Buffer.from(data), width, height });
        writeFileSync(inProject(`${name}.png`), PNG.sync.write(image));
    }
    const readme = blocks(join(web, "README.md"));
    const [lines] = readme.filter((block) => block.includes("node:fs"));
    writeFileSync(inProject("readme.js"), lines);
    run(process.execPath, "readme.js");
    const expected = await blend(vase, dunes, { x: 640, y: 535, zoom: 0.75 });
    assertSame(PNG.sync.read(readFileSync(inProject("vase-on-dunes.png"))), expected, "its picture");
    // The same with the module inside, in a worker.
    writeFileSync(inProject("worker.js"), `
        import { isMainThread, Worker } from "node:worker_threads";
        if (isMainThread) new Worker(new URL(import.meta.url));
        else await import("./inside.js");`);
    writeFileSync(inProject("inside.js"),
        lines.replace('"imageblend"', '"imageblend/inline"').replace("vase-on-dunes", "inside"));
    rmSync(inProject("node_modules/imageblend/lib/imageblend.wasm"));
    run(process.execPath, "worker.js");
    assertSame(PNG.sync.read(readFileSync(inProject("inside.png"))), expected, "from inside");
});
