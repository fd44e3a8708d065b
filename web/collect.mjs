// SPDX-License-Identifier: Apache-2.0
// Puts what is built or lies elsewhere into the package: the module as a file and as text, and the
// licence. Runs before the package is packed.
// usage: node collect.mjs [MODULE]    ../build-web/imageblend.wasm if not given
import { copyFileSync, readFileSync, writeFileSync } from "node:fs";

const here = (path) => new URL(path, import.meta.url);
const module = process.argv[2] ?? here("../build-web/imageblend.wasm");
const bytes = readFileSync(module);
if (!WebAssembly.validate(bytes)) throw new Error(`${module} is no WebAssembly module`);

writeFileSync(here("lib/imageblend.wasm"), bytes);
writeFileSync(here("lib/bytes.js"), `// SPDX-License-Identifier: Apache-2.0
// Written by collect.mjs.
const text = "${bytes.toString("base64")}";

export function moduleBytes() {
    return Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
}
`);
copyFileSync(here("../LICENSE"), here("LICENSE"));
