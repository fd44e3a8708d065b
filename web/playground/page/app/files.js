// SPDX-License-Identifier: Apache-2.0
// Files that are chosen or dropped. take(kind, file) gets them, kind "photo" or "object"; file is
// null when what was dropped is none.

/** Opens the file dialog by a button. */
export function choose(button, input, take) {
    button.addEventListener("click", () => input.click());
    input.addEventListener("change", () => {
        const [file] = input.files;
        input.value = ""; // so that the same file can be chosen again
        if (file) take(file);
    });
}

const hasFiles = (event) => [...(event.dataTransfer?.types ?? [])].includes("Files");

/**
 * Takes files dropped anywhere: on a zone for what that stands for, elsewhere as the photo. While
 * isClosed() a drop does nothing.
 */
export function dropZones(curtain, { take, isClosed }) {
    const zones = [...curtain.querySelectorAll("[data-kind]")];
    const show = (yes) => (curtain.hidden = !yes);
    const mark = (zone) => zones.forEach((each) => each.classList.toggle("over", each === zone));
    const zoneAt = (event) => zones.find((zone) => zone.contains(event.target));

    const over = (event) => {
        if (!hasFiles(event) || isClosed()) return;
        show(true);
        mark(zoneAt(event));
    };

    addEventListener("dragenter", over);
    // Where dragleave names no relatedTarget, every one hides the zones: this brings them back.
    addEventListener("dragover", (event) => {
        event.preventDefault(); // else the browser opens the file
        over(event);
    });
    addEventListener("dragleave", (event) => event.relatedTarget ?? show(false));
    addEventListener("drop", (event) => {
        event.preventDefault();
        show(false);
        if (isClosed()) return;
        const kind = zoneAt(event)?.dataset.kind ?? "photo";
        take(kind, event.dataTransfer?.files[0] ?? null);
    });
}
