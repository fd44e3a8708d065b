// SPDX-License-Identifier: Apache-2.0
// What needs no Blender. The calls share one module, which is let go of when one has made it large.
import { Blender } from "./blender.js";
import { newCore } from "./load.js";
import { checkObjectOptions, cleanSource, findBox, freeSource, loadSource, wordsIn }
    from "./object.js";
import { alphaLast, makeResult, maskBytes } from "./pictures.js";

const KEPT_BYTES = 64 * 1024 * 1024;

let shared;

async function openShared() {
    shared ??= newCore();
    const mine = shared;
    try {
        return await mine;
    } catch (error) {
        // The next call tries again.
        if (shared === mine) shared = undefined;
        throw error;
    }
}

// Nothing waits inside `work`, so no two calls meet.
async function withCore(work) {
    const core = await openShared();
    try {
        return work(core);
    } finally {
        if (core.size > KEPT_BYTES) shared = undefined;
    }
}

export async function blend(object, photo, placement, options) {
    return withCore((core) => {
        const blender = new Blender(core);
        try {
            blender.setPhoto(photo);
            blender.setObject(object, options);
            const { data, width, height } = blender.blend(placement, options);
            return makeResult(data.slice(), width, height);
        } finally {
            blender.dispose();
        }
    });
}

function toResult(core, image, box) {
    const data = new Uint8ClampedArray(box.width * box.height * 4);
    const from = wordsIn(core, image), to = new Uint32Array(data.buffer);
    for (let y = 0; y < box.height; y++) {
        const row = (box.top + y) * image.width + box.left;
        alphaLast(from.subarray(row, row + box.width),
            to.subarray(y * box.width, (y + 1) * box.width));
    }
    return makeResult(data, box.width, box.height);
}

function cutHard(core, source) {
    const { width, height } = core.iconSize(source.mask);
    const icon = core.newImage(width, height, 4);
    try {
        core.createIcon(source.picture, source.mask, icon);
        return toResult(core, icon, { left: 0, top: 0, width, height });
    } finally {
        core.freeImage(icon);
    }
}

function cutSoft(core, source, options, box) {
    const { image, softOutline } = cleanSource(core, source, options, box);
    try {
        return toResult(core, image, softOutline);
    } finally {
        core.freeImage(image);
    }
}

export async function cutOut(object, options) {
    const checked = checkObjectOptions(options);
    return withCore((core) => {
        const source = loadSource(core, object);
        try {
            const box = findBox(core, source);
            return options?.soft ? cutSoft(core, source, checked, box) : cutHard(core, source);
        } finally {
            freeSource(core, source);
        }
    });
}

export async function objectSize(mask) {
    const values = maskBytes(mask);
    return withCore((core) => {
        if (!values.some((level) => level !== 0)) return { width: 0, height: 0 };
        const image = core.newImage(mask.width, mask.height, 1);
        try {
            core.bytes.set(values, image.data);
            return core.iconSize(image);
        } finally {
            core.freeImage(image);
        }
    });
}
