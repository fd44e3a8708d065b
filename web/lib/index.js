// SPDX-License-Identifier: Apache-2.0
// The package with its module in a file beside this one.
import { useByDefault } from "./load.js";

// Bundlers find the file by this very expression.
useByDefault(new URL("./imageblend.wasm", import.meta.url));

export * from "./api.js";
