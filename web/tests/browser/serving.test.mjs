// SPDX-License-Identifier: Apache-2.0
// The scripts that put the page together and serve it say what they cannot do.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { fileURLToPath } from "node:url";
import { serve } from "../../playground/serve.mjs";

/** Runs a script of the playground that is to fail, and returns the one line that it prints. */
function complaint(name, ...options) {
    const script = fileURLToPath(new URL(`../../playground/${name}`, import.meta.url));
    const { status, stderr } = spawnSync(process.execPath, [script, ...options],
        { encoding: "utf8", timeout: 60_000 });
    assert.equal(status, 1);
    assert.match(stderr, /^.+\n$/);
    return stderr;
}

describe("the playground's scripts", () => {
    let folder;

    before(() => (folder = mkdtempSync(join(tmpdir(), "imageblend-serving-"))));
    after(() => rmSync(folder, { recursive: true }));

    test("keep a folder that holds something else", () => {
        const file = join(folder, "notes.txt");
        writeFileSync(file, "mine");
        assert.match(complaint("assemble.mjs", folder), /holds other files/);
        assert.equal(readFileSync(file, "utf8"), "mine");
    });

    test("name a port that is busy or none", async () => {
        const { server } = await serve(folder);
        try {
            assert.match(complaint("serve.mjs", folder, server.address().port), /it is in use/);
            assert.match(complaint("serve.mjs", folder, "http"), /port http: there is none such/);
        } finally {
            server.close();
        }
    });
});
