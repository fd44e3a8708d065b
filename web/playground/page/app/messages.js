// SPDX-License-Identifier: Apache-2.0
// What the page says when something cannot be done.

const sentences = {
    unreadable: (name) => `${name} is not a picture that this browser can read. ` +
        "JPEG, PNG and WebP files work.",
    "too-large": (name) => `${name} is larger than this browser can handle.`,
    memory: (name) => `There is not enough memory for ${name}. A smaller picture may work.`,
    "empty-mask": (name) => `Nothing is marked in ${name}. Paint over the object that you want.`,
    "no-file": () => "That was not a file. Drop a picture from a folder, or choose one.",
    refused: () => "The object stands outside of the photo. Move it back in, then try again.",
    load: () => "A part of this page could not be loaded. Check the connection and load it again.",
};

const fault = (name) => `Something went wrong with ${name}. ` +
    "Load the page again; if that does not help, try another picture.";

/** A sentence for an error with a code; `name` is the file that it was about, if any. */
export function inWords(error, name) {
    const code = error.name === "RangeError" ? "memory" : error.code;
    const text = (sentences[code] ?? fault)(name ? `“${name}”` : "the picture");
    return text[0].toUpperCase() + text.slice(1);
}

const verdicts = {
    fits: () => "Fits",
    cut: (sides) => `Cut off at the ${sides.join(" and ") || "border"}`,
    refused: () => "Outside of the photo",
};

/** What to say about a verdict of the engine. */
export const verdictInWords = (verdict, sides = []) => verdicts[verdict](sides);
