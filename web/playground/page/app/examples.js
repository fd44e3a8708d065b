// SPDX-License-Identifier: Apache-2.0
// The pictures that the page opens with.

const examples = {
    balloon: {
        photo: "lake.jpg", object: "balloon.jpg", mask: "balloon-mask.png",
        placement: { x: 750, y: 215, zoom: 0.65, angle: 0 }, surroundings: 0,
    },
    vase: {
        photo: "dunes.jpg", object: "vase.jpg", mask: "vase-mask.png",
        placement: { x: 640, y: 535, zoom: 0.75, angle: 0 }, surroundings: 0,
    },
};

const folder = new URL("../examples/", import.meta.url);

async function file(name) {
    const answer = await fetch(new URL(name, folder)).catch(() => null);
    if (!answer?.ok) throw Object.assign(new Error(name), { code: "load" });
    const blob = await answer.blob();
    return new File([blob], name, { type: blob.type });
}

/** An example's files and placement. */
export async function loadExample(name) {
    const { photo, object, mask, placement, surroundings } = examples[name];
    const files = await Promise.all([photo, object, mask].map(file));
    return {
        photo: { file: files[0], name: photo },
        object: { file: files[1], mask: files[2], name: object },
        placement, surroundings,
    };
}
