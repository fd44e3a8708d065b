// SPDX-License-Identifier: Apache-2.0
// The package beside the command line, which IMAGEBLEND_TOOL names: the same pictures.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import test, { after } from "node:test";
import { PNG } from "pngjs";
import { blend, cutOut, objectSize } from "../lib/index.js";
import { assertSame, ellipse, marked, picture } from "./scenes.mjs";

const tool = process.env.IMAGEBLEND_TOOL;
const compared = { skip: tool ? false : "IMAGEBLEND_TOOL is not set" };
const folder = mkdtempSync(join(tmpdir(), "imageblend-"));
after(() => rmSync(folder, { recursive: true }));

const asPicture = (mask) => ({ width: mask.width, height: mask.height,
    data: Uint8ClampedArray.from({ length: 4 * mask.data.length },
        (_, i) => (i % 4 === 3 ? 255 : mask.data[i >> 2])) });

function save(name, image) {
    const path = join(folder, `${name}.png`);
    writeFileSync(path, PNG.sync.write(Object.assign(new PNG(), asPng(image))));
    return path;
}

const asPng = ({ data, width, height }) => ({ data: Buffer.from(data), width, height });

/** What the command line makes of the same pictures. */
function runTool(command, object, photo, ...options) {
    const out = join(folder, "out.png"), own = object.mask === undefined;
    const given = [save("source", own ? object : object.picture)];
    if (photo) given.push(save("photo", photo));
    const mask = own ? [] : ["--mask", save("mask", asPicture(object.mask))];
    execFileSync(tool, [command, ...given, out, ...mask, ...options.map(String)]);
    return PNG.sync.read(readFileSync(out));
}

// The command line takes fractions as parts of the photo alone.
const at = ({ x, y }, { width, height }) => `${100 * x / width}%,${100 * y / height}%`;

const mask = ellipse(160, 120, 80, 60, 34, 23);
const vase = marked(1, 160, 120, mask);
const soft = marked(1, 160, 120, ellipse(160, 120, 70, 62, 31, 23, true));
// As lossy compression leaves a mask of black and white.
const noisy = marked(1, 160, 120, { ...mask,
    data: mask.data.map((level, i) => Math.abs(level - (i * 7919) % 13)) });
const cutout = picture(3, 90, 70, (x, y) => 255 * Math.min(Math.max(
    30 - Math.hypot(x - 44, y - 33), 0), 1));
const photo = picture(2, 160, 120), large = picture(4, 300, 200);
const glass = picture(5, 200, 150, (x, y) => (x * 7 + y * 3) & 255);

test("prepared blends have the command line's bytes", compared, async () => {
    const cases = [
        ["a hard mask", vase, large, { x: 140, y: 97 }],
        ["a fraction of a pixel", vase, large, { x: 141.75, y: 97.25 }],
        ["a soft mask", soft, large, { x: 90, y: 80 }],
        ["a mask with noise", noisy, large, { x: 140, y: 97 }],
        ["across a corner", vase, large, { x: 290, y: 4 }],
        ["larger than the photo", soft, picture(6, 40, 30), { x: 22, y: 13 }],
        ["as drawn", vase, large, { x: 140, y: 97 }, { fit: false }, "--no-fit"],
        ["grown", vase, large, { x: 140, y: 97 }, { grow: 2.5 }, "--grow", 2.5],
        ["surroundings", vase, large, { x: 140, y: 97 }, { surroundings: 24 }, "--surroundings", 24],
        ["as wide as they match", vase, large, { x: 140, y: 97 }, { surroundings: "auto" },
            "--surroundings", "auto"],
        ["surroundings across the border", vase, large, { x: 20, y: 190 }, { surroundings: 40 },
            "--surroundings", 40],
        ["a cut-out", cutout, large, { x: 60, y: 70 }],
        ["a photo with alpha", vase, glass, { x: 100, y: 75 }],
        ["a photo with alpha, across its border", vase, glass, { x: 3, y: 149 }],
        ["surroundings over alpha", vase, glass, { x: 100, y: 75 }, { surroundings: 24 },
            "--surroundings", 24],
    ];
    for (const [name, object, onto, place, options, ...words] of cases) {
        const made = runTool("blend", object, onto, "--at", at(place, onto), ...words);
        assertSame(await blend(object, onto, place, options), made, name);
    }
});

test("scaled and turned blends differ from the command line's by roundings", compared, async () => {
    for (const [zoom, angle, surroundings] of [[0.75, 0, 0], [0.6, 20, 0], [0.2, -8, 0],
        [1, 90, 0], [1, -33, 20], [1.7, 200, 0], [0.6, 20, 24]]) {
        const place = { x: 141.75, y: 97.25, zoom, angle };
        const made = runTool("blend", vase, large, "--at", at(place, large), "--zoom", zoom,
            "--angle", angle, "--surroundings", surroundings);
        const own = await blend(vase, large, place, { surroundings });
        let worst = 0, sum = 0;
        own.data.forEach((level, i) => {
            const distance = Math.abs(level - made.data[i]);
            worst = Math.max(worst, distance);
            sum += distance;
        });
        const what = `zoom ${zoom}, angle ${angle}, surroundings ${surroundings}`;
        assert.ok(worst <= 2 && sum <= 100, `${what}: ${worst} levels at most, ${sum} in all`);
    }
});

test("bare blends have the command line's bytes", compared, async () => {
    for (const [object, onto] of [[vase, photo], [soft, photo], [vase, large]]) {
        for (const [x, y, zoom, angle] of [[80, 60, 1, 0], [90, 62, 1.25, 30], [70, 66, 0.8, 0],
            [85, 55, 0.5, 250], [76, 61, 1, -40]]) {
            const made = runTool("blend", object, onto, "--as-is", "--soft", "--at", `${x},${y}`,
                "--zoom", zoom, "--angle", angle);
            const own = await blend(object, onto, { x, y, zoom, angle }, { mode: "asIs" });
            assertSame(own, made, `${onto.width}: ${x},${y} zoom ${zoom} angle ${angle}`);
        }
    }
});

test("objects are cut out and measured like there", compared, async () => {
    const hard = await cutOut(vase);
    assertSame(hard, runTool("cutout", vase, null), "hard");
    assert.deepEqual(await objectSize(vase.mask), { width: hard.width, height: hard.height });
    assertSame(await cutOut(soft, { soft: true }), runTool("cutout", soft, null, "--soft"), "soft");
});
