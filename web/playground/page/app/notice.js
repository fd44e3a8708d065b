// SPDX-License-Identifier: Apache-2.0
// One sentence over the picture, until it is closed or another comes.

export class Notice {
    constructor() {
        this.box = document.getElementById("notice");
        this.text = document.getElementById("notice-text");
        document.getElementById("notice-close").addEventListener("click", () => this.clear());
        this.box.addEventListener("keydown", (event) => event.key === "Escape" && this.clear());
    }

    say(sentence) {
        this.box.hidden = false;
        this.text.textContent = sentence;
    }

    clear() {
        this.box.hidden = true;
        this.text.textContent = "";
    }
}
