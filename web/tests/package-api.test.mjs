// SPDX-License-Identifier: Apache-2.0
// What the package promises in JavaScript; that its pictures are right is package-native.test.mjs.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import test from "node:test";
import * as imageblend from "../lib/index.js";
import { Core } from "../lib/core.js";
import { newCore } from "../lib/load.js";
import { assertSame, copyOf, difference, ellipse, failsWith, isInside, marked, picture }
    from "./scenes.mjs";

const { blend, Blender, cutOut, init, objectSize } = imageblend;

const mask = ellipse(160, 120, 80, 60, 34, 23);
const vase = marked(1, 160, 120, mask);
const cutout = picture(3, 60, 50, (x, y) => (Math.hypot(x - 30, y - 25) < 20 ? 255 : 0));
const photo = picture(2, 240, 180), glass = picture(5, 240, 180, (x, y) => (x * 7 + y * 3) & 255);

async function scene(object = vase, onto = photo) {
    const blender = await Blender.create();
    blender.setPhoto(onto);
    const info = blender.setObject(object);
    return { blender, info };
}

const steps = [
    [{ x: 120, y: 90 }], [{ x: 121, y: 92 }], [{ x: 3, y: 170 }], [{ x: 200, y: 30, zoom: 0.5 }],
    [{ x: 120.5, y: 91.25, angle: 33 }], [{ x: 140, y: 80, angle: 33 }, { mode: "plain" }],
    [{ x: 121, y: 92 }, { mode: "asIs" }], [{ x: 90, y: 60, zoom: 1.2, angle: 9 }, { mode: "asIs" }],
    [{ x: 120, y: 90 }, { surroundings: 12 }], [{ x: 121, y: 90 }, { surroundings: "auto" }],
    [{ x: 100, y: 90, zoom: 20, angle: 5 }], [{ x: 101, y: 90, zoom: 20, angle: 5 }],
    [{ x: 121, y: 92 }, { mode: "plain" }], [{ x: 121, y: 92 }],
];

test("a blend does not depend on those before, and dirty covers what has changed", async () => {
    for (const [object, onto] of [[vase, photo], [vase, glass], [cutout, photo]]) {
        const { blender } = await scene(object, onto);
        let shown = onto;
        for (const [i, [place, options]] of steps.entries()) {
            assert.notEqual(blender.verify(place, options), "refused", `step ${i}`);
            const before = shown;
            shown = copyOf(blender.blend(place, options));
            assertSame(shown, await blend(object, onto, place, options), `step ${i}`);
            assert.ok(difference(shown, onto).width > 0, `step ${i} shows nothing`);
            const { dirty } = blender;
            assert.ok(isInside(difference(shown, before), dirty), `step ${i}`);
            assert.ok(isInside(dirty, { left: 0, top: 0, width: 240, height: 180 }));
            if (i === 1) assert.ok(dirty.width < 100 && dirty.height < 80, "no more than the object");
        }
        assertSame(blender.clear(), onto, "the photo is back");
        blender.setPhoto(cutout);
        blender.blend({ x: 30, y: 25, zoom: 0.2 });
        assert.deepEqual(blender.dirty, { left: 0, top: 0, width: 60, height: 50 });
    }
});

test("inputs stay, and may be views at any address", async () => {
    const kinds = [(size) => new Uint8Array(size), (size) => new Uint8ClampedArray(size),
        (size) => Buffer.alloc(size)];
    for (const make of kinds) {
        const shift = ({ data, width, height }) => {
            const bytes = make(data.length + 3).subarray(3);
            bytes.set(data);
            return { data: bytes, width, height };
        };
        const given = { picture: shift(vase.picture), mask: shift(mask) };
        const result = await blend(given, shift(glass), { x: 120, y: 90, zoom: 0.8 });
        assertSame(result, await blend(vase, glass, { x: 120, y: 90, zoom: 0.8 }), "views");
        assertSame(given.picture, vase.picture, "the picture");
        assert.deepEqual(given.mask.data, shift(mask).data);
    }
    const asPicture = (channel) => ({ width: 160, height: 120,
        data: Uint8Array.from({ length: 160 * 120 * 4 },
            (_, i) => (channel(i & 3) ? mask.data[i >> 2] : 255)) });
    for (const [what, channel] of [["alpha", (c) => c === 3], ["brightness", (c) => c < 3]]) {
        const own = await blend({ picture: vase.picture, mask: asPicture(channel) }, photo,
            { x: 120, y: 90 });
        assertSame(own, await blend(vase, photo, { x: 120, y: 90 }), `a mask in ${what}`);
    }
});

test("a Blender's own view is picture, mask and photo, though the memory grows", async () => {
    const onto = picture(2, 600, 450), { width, height } = onto, place = { x: 300, y: 200 };
    const levels = { width, height, data: onto.data.slice(0, width * height) };
    for (const [name, object, own] of [
        ["picture", { picture: onto, mask: ellipse(width, height, 300, 220, 90, 70) },
            (view, object) => ({ ...object, picture: view })],
        ["mask", { picture: onto, mask: levels }, (view, object) => ({ ...object,
            mask: { width, height, data: view.data.subarray(0, width * height) } })],
    ]) {
        const blender = await Blender.create();
        blender.setPhoto(onto);
        const { memory } = blender;
        blender.setObject(own(blender.clear(), object));
        assert.ok(blender.memory > memory, "the memory has grown");
        assertSame(blender.blend(place), await blend(object, onto, place), `as ${name}`);
        const top = { width, height: 60, data: onto.data.slice(0, 4 * width * 60) };
        blender.setPhoto({ ...top, data: blender.clear().data.subarray(0, 4 * width * 60) });
        assertSame(blender.clear(), top, "as photo");
    }
});

test("verdicts, bounds and what is known of an object", async () => {
    const { blender, info } = await scene();
    assert.equal(info.edge, "hard");
    assert.equal(info.surroundings, true);
    assert.ok(Math.abs(info.left + info.width / 2 - 80) <= 1 && Math.abs(info.height - 45) <= 2);
    const verdicts = [
        ["fits", { x: 120, y: 90 }], ["cut", { x: 10, y: 90 }], ["refused", { x: -60, y: 90 }],
        ["refused", { x: 120, y: 90, zoom: 0.01 }], ["cut", { x: 120, y: 90, zoom: 9 }],
        ["fits", { x: 120, y: 90 }, { mode: "asIs" }], ["seam", { x: 10, y: 90 }, { mode: "asIs" }],
        ["refused", { x: 120, y: 90, zoom: 9 }, { mode: "asIs" }],
    ];
    for (const [verdict, place, options] of verdicts) {
        assert.equal(blender.verify(place, options), verdict, JSON.stringify(place));
        if (verdict !== "refused") continue;
        assert.throws(() => blender.blend(place, options), failsWith("refused"));
    }
    const box = blender.bounds({ x: 100, y: 50, zoom: 2, angle: 90 });
    assert.ok(Math.abs(box.width - 2 * info.height) < 1e-9 && box.height > 1.9 * info.width);
    assert.ok(Math.abs(box.left + box.width / 2 - 100) < 3 && Math.abs(box.top + box.height / 2 - 50) < 3);
    assert.deepEqual(await objectSize({ data: new Uint8Array(35), width: 7, height: 5 }),
        { width: 0, height: 0 });
});

test("every argument that does not fit is an error with its code", async () => {
    const { blender } = await scene();
    const before = copyOf(blender.blend({ x: 120, y: 90 }));
    const place = { x: 120, y: 90 };
    const cases = [
        ["size", () => blender.setPhoto({ ...photo, width: 239 })],
        ["size", () => blender.setPhoto({ ...photo, width: 0 })],
        ["argument", () => blender.setPhoto({ ...photo, data: [...photo.data.slice(0, 4)] })],
        ["argument", () => blender.setPhoto(null)],
        ["size", () => blender.setObject({ picture: photo, mask })],
        ["size", () => blender.setObject({ ...vase, mask: { ...mask, height: 119 } })],
        ["argument", () => blender.setObject(undefined)],
        ["argument", () => blender.setObject({ ...vase, mask: ellipse(160, 120, 0, 0, 0, 0) })],
        ["argument", () => blender.setObject(picture(1, 9, 9, () => 0))],
        ["argument", () => blender.setObject(vase, { grow: 17 })],
        ["argument", () => blender.blend()],
        ["argument", () => blender.blend({ x: NaN, y: 1 })],
        ["argument", () => blender.blend({ x: "120", y: 90 })],
        ["argument", () => blender.blend({ ...place, zoom: 0 })],
        ["argument", () => blender.blend({ ...place, zoom: 1e-60 })],
        ["argument", () => blender.blend({ ...place, zoom: 1e39 })],
        ["argument", () => blender.verify({ ...place, angle: Infinity })],
        ["argument", () => blender.blend(place, { mode: "asis" })],
        ["argument", () => blender.blend(place, { surroundings: 257 })],
        ["argument", () => new Blender()],
    ];
    for (const [code, call] of cases) assert.throws(call, failsWith(code), String(call));
    blender.setObject(vase, null);
    assertSame(await blend(vase, photo, place, null), before, "null is no options");
    assertSame(await cutOut(vase, null), await cutOut(vase), "null is no options");
    await assert.rejects(blend(vase, { ...photo, height: 1 }, place), failsWith("size"));
    await assert.rejects(blend(vase, photo, { x: 1e8, y: 0 }), failsWith("refused"));
    await assert.rejects(blend({ picture: photo, mask: ellipse(240, 180, 120, 90, 119, 89) },
        picture(1, 50, 50), { x: 25, y: 25 }, { mode: "asIs" }), failsWith("refused"));
    await assert.rejects(cutOut(picture(1, 9, 9, () => 0)), failsWith("argument"));
    await assert.rejects(objectSize({ data: new Uint8Array(5), width: 2, height: 2 }),
        failsWith("size"));
    assertSame(blender.blend(place), before, "nothing has changed");
});

test("what is not set, and a Blender after dispose", async () => {
    const blender = await Blender.create();
    const { memory } = blender;
    assert.throws(() => blender.clear(), failsWith("argument"));
    blender.setObject(vase);
    assert.throws(() => blender.blend({ x: 1, y: 1 }), failsWith("argument"));
    assert.ok(blender.memory >= memory);
    blender.dispose();
    blender.dispose();
    for (const call of [() => blender.setPhoto(photo), () => blender.setObject(vase),
        () => blender.blend({ x: 1, y: 1 }), () => blender.bounds({ x: 1, y: 1 }),
        () => blender.clear(), () => blender.memory]) {
        assert.throws(call, failsWith("argument"), String(call));
    }
});

test("a thousand blends, refusals, objects and failures need no more memory", async () => {
    const core = await newCore(), blender = new Blender(core);
    const turns = () => {
        for (const onto of [photo, glass, cutout]) {
            blender.setPhoto(onto);
            blender.setObject(vase);
            for (const [place, options] of steps) blender.verify(place, options);
            blender.setObject(cutout);
            assert.throws(() => blender.setObject(picture(1, 300, 300, () => 0)));
            for (const [place, options] of onto === cutout ? [] : steps) {
                blender.blend(place, options);
            }
        }
    };
    turns();
    const { memory } = blender, spare = 2 ** 17;
    for (let i = 0; i < 24; i++) turns();
    const refusals = [[{ x: -900, y: 0 }], [{ x: 1, y: 1, zoom: 1e-4 }],
        [{ x: 120, y: 90, zoom: 9, angle: 3 }, { mode: "asIs" }],
        [{ x: 120, y: 90, zoom: 30 }, { mode: "asIs" }]];
    for (let i = 0; i < 1000; i++) {
        const [place, options] = refusals[i % refusals.length];
        assert.throws(() => blender.blend(place, options), failsWith("refused"));
    }
    assert.ok(blender.memory <= memory + spare, `${blender.memory} bytes after ${memory}`);
    blender.dispose();
    // All but the module's own data and stack can be had in one piece.
    core.free(core.alloc(core.size - 4 * spare));
    assert.ok(core.size <= memory + spare, `${core.size} bytes after ${memory}`);
});

test("without memory a call fails and others go on; calls leave nothing behind", () => {
    // 16 MB for each module.
    const run = spawnSync(process.execPath, ["--wasm-max-mem-pages=256", "--input-type=module",
        "--eval", `
        import assert from "node:assert/strict";
        import { Blender, blend, cutOut, objectSize } from "${new URL("../lib/index.js", import.meta.url)}";
        import { assertSame, copyOf, ellipse, failsWith, marked, picture }
            from "${new URL("scenes.mjs", import.meta.url)}";
        const place = { x: 120, y: 90 }, photo = picture(2, 240, 180);
        const vase = marked(1, 160, 120, ellipse(160, 120, 80, 60, 34, 23));
        const expected = await blend(vase, photo, place);
        for (const [width, height] of [[1200, 900], [1400, 1000], [1500, 1300], [2000, 1500]]) {
            const blender = await Blender.create();
            blender.setPhoto(photo);
            blender.setObject(vase);
            const large = picture(4, width, height);
            let failures = 0;
            for (const call of [
                () => blender.setObject({ picture: large, mask: ellipse(width, height, 600, 400, 550, 380) }),
                () => blender.blend({ ...place, zoom: 15 }),
                () => blender.setPhoto(large),
                () => blender.blend({ ...place, zoom: 15 }),
                () => blender.blend(place, { mode: "asIs" }),
            ]) {
                try {
                    call();
                } catch (error) {
                    if (error.code === "memory") failures++;
                    else if (error.code !== "argument") throw error;
                }
            }
            assert.ok(failures > 0, width + " x " + height);
            blender.setPhoto(photo);
            blender.setObject(vase);
            assertSame(blender.blend(place), expected, width + " x " + height);
            await assert.rejects(cutOut({ ...picture(4, 2000, 2000) }), failsWith("memory"));
            assertSame(await blend(vase, photo, place), expected, "the shared module");
        }
        // What these left behind would not fit.
        for (let i = 0; i < 150; i++) {
            await blend(vase, photo, { ...place, zoom: 0.5 + i / 400 });
            await cutOut(vase, { soft: i % 2 === 0 });
            await objectSize(vase.mask);
            await assert.rejects(blend(vase, photo, { x: -900, y: 0 }), failsWith("refused"));
        }`]);
    assert.equal(run.status, 0, run.stderr.toString());
});

test("a large zoom needs no more memory than the photo's size asks for", async () => {
    const { blender } = await scene();
    for (const surroundings of [0, "auto"]) {
        for (const zoom of [40, 300, 5e3, 1e5, 1e9, 1e38]) {
            const place = { x: 120, y: 90, zoom, angle: 5 };
            assert.equal(blender.verify(place, { surroundings }), "cut");
            const shown = blender.blend(place, { surroundings });
            assert.deepEqual(difference(shown, photo), { left: 0, top: 0, width: 240, height: 180 });
        }
    }
    assert.ok(blender.memory < 2 ** 23, `${blender.memory} bytes`);
});

test("views are made anew when the memory has grown", async () => {
    const { blender } = await scene();
    const view = blender.blend({ x: 120, y: 90 }), expected = copyOf(view);
    blender.setObject(picture(9, 2400, 1800, (x) => (x > 1000 ? 255 : 0)));
    assert.equal(view.data.length, 0, "the old view is detached");
    blender.setObject(vase);
    assertSame(blender.blend({ x: 120, y: 90 }), expected, "after growth");
});

test("addresses above 2 GiB", async () => {
    const core = await newCore();
    // Nothing of it is touched, so that no memory is needed.
    core.alloc(2 ** 31 - 2 ** 20);
    core.alloc(2 ** 21);
    const blender = new Blender(core);
    for (const onto of [photo, glass]) {
        blender.setPhoto(onto);
        blender.setObject(vase);
        for (const [place, options] of steps) {
            assertSame(blender.blend(place, options), await blend(vase, onto, place, options), "high");
        }
    }
    assert.ok(blender.blend({ x: 120, y: 90 }).data.byteOffset > 2 ** 31);
});

test("frames of more bytes than there are addresses are refused", async () => {
    const core = await newCore(), width = 12_897_764;
    // Nine bytes for each of 37 rows are 2^32 + 104.
    const object = core.newImage(width, 1, 4), destination = core.newImage(width, 1, 4);
    core.bytes.fill(255, object.data, object.data + 4 * width);
    const layer = { object, surroundings: null, reach: 0, left: 0, top: 0 };
    assert.throws(() => core.paste(layer, destination), failsWith("memory"));
});

test("a failure to load says so, and the next source is tried", async () => {
    await assert.rejects(init("file:///no/such/module.wasm"), failsWith("load"));
    await assert.rejects(init(new TextEncoder().encode("<!doctype html>")), failsWith("load"));
    await assert.rejects(Blender.create(), failsWith("load"));
    await assert.rejects(init(5), failsWith("argument"));
    const { readFile } = await import("node:fs/promises");
    const bytes = await readFile(new URL("../lib/imageblend.wasm", import.meta.url));
    for (const source of [bytes, bytes.buffer.slice(bytes.byteOffset,
        bytes.byteOffset + bytes.length), `data:application/wasm;base64,${bytes.toString("base64")}`,
        new URL("../lib/imageblend.wasm", import.meta.url)]) {
        await init(source);
        assert.ok(await newCore() instanceof Core);
    }
});
