// Shortcuts, and the dialog that lists them.

import { $, h } from "./dom.js";
import { chosenPayload, step } from "./payloads.js";
import { switchTheme } from "./appearance.js";
import { togglePause } from "./traffic.js";
import { showTab, showView } from "./views.js";

function focus(view, node) {
    showView(view);
    node.focus();
    node.select?.();
}

const shortcuts = {
    "/": ["Search the payloads", () => focus("payloads", $("payload-search"))],
    j: ["Next payload", () => step(1)],
    k: ["Payload before", () => step(-1)],
    c: ["Queue a command", () => {
        if (chosenPayload()) {
            showTab("tab-commands");
            focus("payloads", $("command-form").elements.command);
        }
    }],
    w: ["Power switches and shutdown", () => {
        if (chosenPayload()) {
            showTab("tab-power");
            focus("payloads", $("switch-list").querySelector("button"));
        }
    }],
    m: ["Map", () => focus("vehicle", $("map").querySelector("svg"))],
    b: ["Break something: search the faults", () => {
        showTab("tab-faults");
        focus("break", $("fault-form").elements.search);
    }],
    f: ["Filter the traffic", () => focus("traffic", $("filter").elements.text)],
    x: ["Newest exchange", () => focus("traffic", $("exchange-list").querySelector("button") ?? $("pause"))],
    p: ["Pause and resume the traffic", togglePause],
    t: ["Light, dark or as the system is", switchTheme],
    "?": ["This list", showKeys],
};

const elsewhere = [["Esc", "Leave a field, close a dialog"], ["↑ ↓", "Exchange before and next, on one of them"],
    ["← →", "Tab before and next, on a tab; moves the map, on it"], ["+ −", "Zoom, on the map"]];

function showKeys() {
    const dialog = $("keys");
    const close = h("button", { type: "button", class: "quiet icon", "aria-label": "Close", onclick: () => dialog.close() }, "×");
    const rows = [...Object.entries(shortcuts).map(([key, [text]]) => [key, text]), ...elsewhere];
    dialog.replaceChildren(
        h("div", { class: "card-head" }, h("h2", { id: "keys-title" }, "Keyboard shortcuts"), close),
        h("table", { class: "keys" }, h("tbody", null, rows.map(([key, text]) =>
            h("tr", null, h("th", { scope: "row" }, h("kbd", null, key)), h("td", null, text))))));
    dialog.showModal();
}

function isTyping(node) {
    return node.matches?.("input:not([type=checkbox], [type=radio]), textarea, select");
}

export function startKeys() {
    $("help").addEventListener("click", showKeys);
    document.addEventListener("keydown", (event) => {
        if (event.ctrlKey || event.metaKey || event.altKey || document.querySelector("dialog[open]")) {
            return;
        }
        if (isTyping(event.target)) {
            if (event.key === "Escape") {
                event.target.blur();
            }
            return;
        }
        const shortcut = shortcuts[event.key];
        if (shortcut) {
            event.preventDefault();
            shortcut[1]();
        }
    });
    for (const dialog of document.querySelectorAll("dialog")) {
        dialog.addEventListener("click", (event) => event.target === dialog && dialog.close());
    }
}
