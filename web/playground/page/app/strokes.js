// SPDX-License-Identifier: Apache-2.0
// A mask as strokes of a brush over a base. A stroke is { erase, width, points } in the mask's
// pixels; the mask is the alpha of the canvas that it is drawn on.

export class Strokes {
    /** `base` is null or a canvas of the mask's size whose alpha the strokes begin with. */
    constructor(context, base) {
        this.context = context;
        this.base = base;
        this.done = [];
        this.redraw();
    }

    begin(erase, width, point) {
        this.done.push({ erase, width, points: [point] });
        this.#draw(this.done.at(-1), 0);
    }

    /** Takes the newest stroke on to a point. */
    extend(point) {
        const stroke = this.done.at(-1);
        stroke.points.push(point);
        this.#draw(stroke, stroke.points.length - 1);
    }

    undo() {
        if (this.done.pop()) this.redraw();
    }

    /** Forgets everything, the base too; a step of its own. */
    clear() {
        this.done.push({ clear: true });
        this.redraw();
    }

    redraw() {
        const { canvas } = this.context;
        const from = this.done.findLastIndex((stroke) => stroke.clear);
        this.context.globalCompositeOperation = "source-over";
        this.context.clearRect(0, 0, canvas.width, canvas.height);
        if (this.base && from < 0) this.context.drawImage(this.base, 0, 0);
        for (const stroke of this.done.slice(from + 1)) {
            stroke.points.forEach((_, number) => this.#draw(stroke, number));
        }
    }

    /** Draws what one point adds to a stroke: a line from the point before it, or a dot. */
    #draw({ erase, width, points }, number) {
        const { context } = this;
        const [from, to] = [points[Math.max(0, number - 1)], points[number]];
        context.globalCompositeOperation = erase ? "destination-out" : "source-over";
        Object.assign(context, { lineWidth: width, lineCap: "round", strokeStyle: "#f04" });
        context.beginPath();
        context.moveTo(from.x, from.y);
        context.lineTo(to.x, to.y + (number === 0 ? 0.01 : 0)); // no length, no caps
        context.stroke();
    }

    /** The mask, one byte a pixel. */
    mask() {
        const { width, height } = this.context.canvas;
        const pixels = this.context.getImageData(0, 0, width, height).data;
        const data = new Uint8Array(width * height);
        for (let at = 0; at < data.length; at++) data[at] = pixels[at * 4 + 3];
        return { data, width, height };
    }
}
