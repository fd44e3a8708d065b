// SPDX-License-Identifier: Apache-2.0
// The package with its module inside, for bundlers that do not find files, and pages that fetch none.
import { useByDefault } from "./load.js";
import { moduleBytes } from "./bytes.js";

useByDefault(moduleBytes);

export * from "./api.js";
