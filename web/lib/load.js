// SPDX-License-Identifier: Apache-2.0
// Finds, fetches and compiles the module, once.
import { fail, ImageBlendError } from "./errors.js";
import { Core } from "./core.js";

let source;
let compiled;

/** Where the module is unless init says otherwise: an address, or a function that gives bytes. */
export function useByDefault(place) {
    source ??= place;
}

async function readFile(address) {
    // Not written as a part of the import, so that no bundler for browsers looks for it.
    const name = "node:fs/promises";
    const files = await import(/* webpackIgnore: true */ /* @vite-ignore */ name);
    return files.readFile(address);
}

async function fetchBytes(address) {
    const response = await fetch(address);
    if (!response.ok) throw new Error(`the server answers ${response.status}`);
    return response.arrayBuffer();
}

async function readBytes(place) {
    if (typeof place === "function") return place();
    if (place instanceof ArrayBuffer || ArrayBuffer.isView(place)) return place;
    // A path without a scheme is relative to a page, or to the working folder of a program.
    const base = globalThis.location?.href ?? "file:///";
    const scheme = /^[a-z][a-z0-9+.-]+:/i;
    const text = String(place?.href ?? place);
    const inFiles = globalThis.process?.versions?.node !== undefined;
    if (inFiles && !scheme.test(text)) return readFile(text);
    const address = new URL(text, base);
    return inFiles && address.protocol === "file:" ? readFile(address) : fetchBytes(address);
}

async function compile(place) {
    try {
        return await WebAssembly.compile(await readBytes(place));
    } catch (error) {
        const name = typeof place === "string" || place?.href ? ` from ${place}` : "";
        return fail("load", `the module could not be loaded${name}: ${error.message}`, error);
    }
}

function checkSource(place) {
    const fits = typeof place === "string" || typeof place?.href === "string" ||
        place instanceof ArrayBuffer || ArrayBuffer.isView(place);
    if (!fits) fail("argument", "init takes an address or the module's bytes");
}

export async function init(place) {
    if (place !== undefined) {
        checkSource(place);
        source = place;
        compiled = undefined;
    }
    compiled ??= compile(source);
    const mine = compiled;
    try {
        return void (await mine);
    } catch (error) {
        // The next call tries again.
        if (compiled === mine) compiled = undefined;
        throw error;
    }
}

/** The module with memory of its own. */
export async function newCore() {
    await init();
    try {
        return new Core(await WebAssembly.instantiate(await compiled));
    } catch (error) {
        if (error instanceof ImageBlendError) throw error;
        const code = error instanceof RangeError ? "memory" : "load";
        return fail(code, `the module could not be started: ${error.message}`, error);
    }
}
