// SPDX-License-Identifier: Apache-2.0
// Serves a folder on this machine alone: node serve.mjs FOLDER [PORT]. For trying out and tests;
// any static host does for others.

import { createReadStream } from "node:fs";
import { stat } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join, resolve, sep } from "node:path";
import { fileURLToPath } from "node:url";

const types = {
    ".css": "text/css", ".html": "text/html", ".jpg": "image/jpeg", ".js": "text/javascript",
    ".png": "image/png", ".svg": "image/svg+xml", ".wasm": "application/wasm",
};

/** The file below `folder` that an address under `prefix` means, or null. */
async function fileFor(folder, prefix, address) {
    const path = decodeURIComponent(new URL(address, "http://localhost").pathname);
    if (!path.startsWith(prefix)) return null;
    const file = resolve(folder, path.slice(prefix.length) || "index.html");
    if (!file.startsWith(folder + sep)) return null;
    const found = await stat(file);
    return found.isDirectory() ? join(file, "index.html") : file;
}

/** Serves `folder` under `prefix`, which begins and ends with a slash; port 0 is any free one. */
export function serve(folder, { port = 0, prefix = "/" } = {}) {
    const root = resolve(folder);
    const server = createServer(async (request, response) => {
        const file = await fileFor(root, prefix, request.url).catch(() => null);
        if (!file) return response.writeHead(404).end();
        response.writeHead(200, {
            "Content-Type": types[extname(file)] ?? "application/octet-stream",
            "Cache-Control": "no-cache",
        });
        createReadStream(file).on("error", () => response.destroy()).pipe(response);
    });
    return new Promise((done, failed) => {
        server.on("error", failed);
        server.listen(port, "localhost", () => done({
            server, address: `http://localhost:${server.address().port}${encodeURI(prefix)}`,
        }));
    });
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const [folder, port] = process.argv.slice(2);
    try {
        const { address } = await serve(folder, { port: Number(port ?? 8080) });
        console.log(`The playground is at ${address} until you press Ctrl+C.`);
    } catch (error) {
        const reasons = { EADDRINUSE: "it is in use", ERR_SOCKET_BAD_PORT: "there is none such" };
        const reason = reasons[error.code] ?? error.message;
        console.error(`The playground cannot be served at port ${port ?? 8080}: ${reason}`);
        process.exit(1);
    }
}
