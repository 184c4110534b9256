// What is told to the person: refusals, shown for a while, and progress, for screen readers.

import { $, h } from "./dom.js";

const shownFor = 8000;

export function complain(line) {
    const notice = h("div", { class: "notice" }, h("span", null, line),
        h("button", { type: "button", class: "quiet icon", "aria-label": "Close", onclick: () => notice.remove() }, "×"));
    $("notices").append(notice);
    setTimeout(() => notice.remove(), shownFor);
}

export function speak(line) {
    const node = $("spoken");
    node.append(h("p", null, line));
    while (node.childElementCount > 5) {
        node.firstElementChild.remove();
    }
}
