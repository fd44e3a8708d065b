// SPDX-License-Identifier: Apache-2.0
export { Blender } from "./blender.js";
export { ImageBlendError } from "./errors.js";
export { blend, cutOut, objectSize } from "./functions.js";
export { init } from "./load.js";
