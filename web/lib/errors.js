// SPDX-License-Identifier: Apache-2.0
export class ImageBlendError extends Error {
    constructor(code, message, cause) {
        super(message, cause === undefined ? undefined : { cause });
        this.name = "ImageBlendError";
        this.code = code;
    }
}

export function fail(code, message, cause) {
    throw new ImageBlendError(code, message, cause);
}

/** The number, if it is a finite one from `least` to `most`. */
export function checkNumber(name, value, least = -Infinity, most = Infinity) {
    if (typeof value === "number" && Number.isFinite(value) && value >= least && value <= most) {
        return value;
    }
    const range = least === -Infinity ? "" : `, ${least} .. ${most}`;
    return fail("argument", `${name} is ${String(value)}, must be a finite number${range}`);
}
