// SPDX-License-Identifier: Apache-2.0
// Puts the page together in a folder that any static host can serve: node assemble.mjs FOLDER.
// The package's files, the module included, must be in web/lib.

import { existsSync } from "node:fs";
import { cp, mkdir, readdir, rm } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const repository = join(here, "..", "..");
const pictures = ["balloon.jpg", "balloon-mask.png", "dunes.jpg", "lake.jpg", "vase.jpg",
    "vase-mask.png"];

async function copyAll(from, to, names) {
    await mkdir(to, { recursive: true });
    await Promise.all(names.map((name) => cp(join(from, name), join(to, name))));
}

/** Of the package, what a page that fetches the module needs. */
async function packageFiles(folder) {
    const names = await readdir(folder);
    return names.filter((name) => /\.(js|wasm)$/.test(name) && !/^(inline|bytes)\./.test(name));
}

/** Only an empty folder, a new one or an older page may be replaced. */
async function checkReplaceable(folder) {
    if (!existsSync(folder) || existsSync(join(folder, "imageblend", "index.js"))) return;
    if ((await readdir(folder)).length > 0) {
        throw new Error(`${folder} holds other files than the page: name a new or an empty folder`);
    }
}

export async function assemble(folder) {
    await checkReplaceable(folder);
    await rm(folder, { recursive: true, force: true });
    await cp(join(here, "page"), folder, { recursive: true });
    const library = join(here, "..", "lib");
    await copyAll(library, join(folder, "imageblend"), await packageFiles(library));
    await copyAll(join(repository, "examples"), join(folder, "examples"), pictures);
    await cp(join(repository, "LICENSE"), join(folder, "LICENSE"));
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    try {
        if (!process.argv[2]) throw new Error("usage: node assemble.mjs FOLDER");
        await assemble(process.argv[2]);
    } catch (error) {
        console.error(error.message);
        process.exit(1);
    }
}
