// SPDX-License-Identifier: Apache-2.0
// Undo and redo over whole states, which are never changed but replaced.

const LONGEST = 200;
/** Changes of one kind are one step until close, or when they are told by such a pause. */
const PAUSES = { drag: Infinity, slider: 800, keys: 800, wheel: 500 };

export class History {
    constructor(now = () => performance.now()) {
        this.now = now;
        this.past = [];
        this.future = [];
        this.present = null;
        this.kind = null;
        this.time = 0;
    }

    get canUndo() {
        return this.past.length > 0;
    }

    get canRedo() {
        return this.future.length > 0;
    }

    /** Makes `state` the present. `kind` names changes that may be one step; null is none. */
    push(state, kind = null) {
        const time = this.now();
        const merged = kind !== null && kind === this.kind &&
            time - this.time < PAUSES[kind];
        if (this.present !== null && !merged) this.past.push(this.present);
        if (this.past.length > LONGEST) this.past.shift();
        this.present = state;
        this.future = [];
        this.kind = kind;
        this.time = time;
    }

    /** Ends a step, whatever comes next. */
    close() {
        this.kind = null;
    }

    undo() {
        this.#step(this.past, this.future);
    }

    redo() {
        this.#step(this.future, this.past);
    }

    #step(from, to) {
        if (!from.length) return;
        to.push(this.present);
        this.present = from.pop();
        this.kind = null;
    }
}
