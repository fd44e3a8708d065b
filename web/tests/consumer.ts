// SPDX-License-Identifier: Apache-2.0
// Every name of the package as a strict program uses it. It is checked, and run where the package is
// installed.
import { blend, Blender, cutOut, ImageBlendError, init, objectSize } from "imageblend";
import type { Box, Mask, ObjectInfo, ObjectSource, Picture, Placement, Result, Verdict }
    from "imageblend";
import * as inline from "imageblend/inline";

const fill = (length: number, at: (i: number) => number): Uint8ClampedArray =>
    Uint8ClampedArray.from({ length }, (_, i) => at(i));
const photo: Picture = { data: fill(64 * 48 * 4, (i) => (i & 3) === 3 ? 255 : i), width: 64, height: 48 };
const mask: Mask = { data: new Uint8Array(64 * 48).fill(255, 1300, 1330), width: 64, height: 48 };
const object: ObjectSource = { picture: photo, mask };
const place: Placement = { x: 32, y: 20, zoom: 1.5, angle: 10 };

await init();
const once: Result = await blend(object, photo, place, { mode: "plain", fit: false, grow: 1 });
const part: Result = await cutOut(object, { soft: true });
const { width, height } = await objectSize(mask);
const blender: Blender = await Blender.create();
blender.setPhoto(photo);
const info: ObjectInfo = blender.setObject(object, { fit: true });
const verdict: Verdict = blender.verify(place, { mode: "asIs" });
const bounds: Box = blender.bounds(place);
const view = blender.blend(place, { surroundings: "auto" });
const sum: number = view.data.length + once.data.length + part.width + width + height + bounds.left;
const dirty: Box = blender.dirty;
// A cut-out is an object by itself, and a result may be a photo.
blender.setPhoto(blender.clear());
blender.setObject(part);
const numbers: number[] = [sum, dirty.width, blender.memory, info.moved];
blender.dispose();
try {
    await inline.blend(object, photo, { x: -500, y: 0 });
} catch (error) {
    if (!(error instanceof inline.ImageBlendError)) throw error;
    const code: "refused" | "size" | "memory" | "load" | "argument" = error.code;
    if (code !== "refused" || inline.ImageBlendError !== ImageBlendError) throw error;
}
if (numbers.some((value) => !Number.isFinite(value))) throw new Error(`${verdict}: ${numbers}`);

// @ts-expect-error: a photo has sides
blender.setPhoto({ data: new Uint8ClampedArray(4) });
// @ts-expect-error: there is no such mode
blender.verify(place, { mode: "asis" });
// @ts-expect-error: Blender.create makes it
new Blender();
