// SPDX-License-Identifier: Apache-2.0
// The outline of an object: for each row from its first to its last the pixels that it spans.

/** Of the pixels with a value from `least` on; null if none. */
export function findOutline(values, width, height, least) {
    const begins = new Int32Array(height), ends = new Int32Array(height);
    let left = width, right = 0, top = height, bottom = 0;
    for (let y = 0, row = 0; y < height; y++, row += width) {
        let begin = 0, end = width;
        while (begin < end && values[row + begin] < least) begin++;
        while (end > begin && values[row + end - 1] < least) end--;
        begins[y] = begin;
        ends[y] = end;
        if (begin === end) continue;
        left = Math.min(left, begin);
        right = Math.max(right, end);
        top = Math.min(top, y);
        bottom = y + 1;
    }
    if (bottom === 0) return null;
    return {
        left, top, width: right - left, height: bottom - top,
        begins: begins.subarray(top, bottom), ends: ends.subarray(top, bottom),
    };
}

export function middleOf(outline) {
    return { x: outline.left + outline.width / 2, y: outline.top + outline.height / 2 };
}

/** How far it reaches from a point, in its own pixels, when it is turned about that. */
export function findReach(outline, centre, angle) {
    const cosine = Math.cos(angle * Math.PI / 180), sine = Math.sin(angle * Math.PI / 180);
    const reach = { left: 0, right: 0, up: 0, down: 0 };
    for (let row = 0; row < outline.height; row++) {
        if (outline.ends[row] === outline.begins[row]) continue;
        for (const column of [outline.begins[row], outline.ends[row]]) {
            for (let edge = row; edge <= row + 1; edge++) {
                const dx = column - centre.x, dy = outline.top + edge - centre.y;
                const x = cosine * dx + sine * dy, y = cosine * dy - sine * dx;
                reach.left = Math.max(reach.left, -x);
                reach.right = Math.max(reach.right, x);
                reach.up = Math.max(reach.up, -y);
                reach.down = Math.max(reach.down, y);
            }
        }
    }
    return reach;
}
