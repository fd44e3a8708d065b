// SPDX-License-Identifier: Apache-2.0
// The result as a file.

/** Files without loss stay so; the others become JPEG. */
export const typeFor = (photoType) =>
    ["image/png", "image/webp", "image/bmp", "image/gif"].includes(photoType)
        ? "image/png" : "image/jpeg";

/** A name for the result beside its photo's. */
export function nameFor(photoName, type) {
    const stem = photoName.replace(/\.[^.]*$/, "") || "photo";
    return `${stem}-blended.${type === "image/png" ? "png" : "jpg"}`;
}

/** Hands a file to the browser's downloads. */
export function save(file, name) {
    const address = URL.createObjectURL(file);
    const link = Object.assign(document.createElement("a"), { href: address, download: name });
    link.click();
    setTimeout(() => URL.revokeObjectURL(address), 60_000);
}
