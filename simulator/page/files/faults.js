// Faults to arm and those that are armed; and the rules of scripts.

import { get, onClick, onSubmit, post, remove } from "./api.js";
import { $, h, keyed, setText, whenChanged } from "./dom.js";
import { feed, on } from "./feed.js";
import { plural } from "./format.js";
import { operations } from "./operations.js";

let catalogue = [];

function amountText(armed) {
    return armed.count === null ? `${+(armed.probability * 100).toFixed(3)} % of replies`
        : armed.count === 1 ? "the next reply" : `the next ${armed.count} replies`;
}

function makeArmed(armed) {
    const text = h("span", { class: "muted" });
    const row = h("li", { class: "item armed" },
        h("div", { class: "item-text" }, h("span", { class: "mono" }, armed.fault), text),
        onClick(h("button", { type: "button", class: "quiet", "aria-label": `Disarm ${armed.fault}` }, "Disarm"),
            () => remove(`faults?number=${armed.number}`)));
    row.update = (now) => {
        const where = now.operation === "all" ? "to anything" : `to ${now.operation}`;
        setText(text, `${amountText(now)} ${where}${now.hits > 0 ? ` · struck ${plural(now.hits, "time")}` : ""}`);
    };
    return row;
}

const drawArmed = whenChanged((armed) => {
    keyed($("armed-list"), armed, ({ number }) => number, makeArmed);
    setText($("count-faults"), armed.length === 0 ? "" : String(armed.length));
});

async function arm(fault) {
    const { operation, mode, amount } = $("fault-form").elements;
    const value = Number(amount.value);
    await post("faults", { fault, operation: operation.value,
        ...(mode.value === "count" ? { count: value } : { probability: value / 100 }) });
}

function faultRow({ name, summary }) {
    return h("li", { class: "item" },
        h("div", { class: "item-text" }, h("span", { class: "mono" }, name), h("span", { class: "muted" }, summary)),
        onClick(h("button", { type: "button", "aria-label": `Arm ${name}` }, "Arm"), () => arm(name)));
}

/** By groups, which are closed until something is searched for. */
function drawCatalogue() {
    const wanted = $("fault-form").elements.search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const found = catalogue.filter(({ name, group, summary }) =>
        wanted.every((word) => `${name} ${group} ${summary}`.toLowerCase().includes(word)));
    const open = new Set([...$("fault-list").querySelectorAll("details[open]")].map((group) => group.dataset.group));
    const groups = new Map();
    for (const fault of found) {
        groups.set(fault.group, [...(groups.get(fault.group) ?? []), fault]);
    }
    $("fault-list").replaceChildren(...[...groups].map(([group, faults]) => h("details",
        { "data-group": group, open: wanted.length > 0 || open.has(group) || groups.size === 1 },
        h("summary", null, h("span", null, group), h("span", { class: "count" }, String(faults.length))),
        h("ul", { class: "items" }, faults.map(faultRow)))));
    $("fault-none").hidden = found.length > 0;
}

function startAmount() {
    const { mode, amount } = $("fault-form").elements;
    mode.addEventListener("change", () => {
        const chance = mode.value === "probability";
        amount.value = chance ? "10" : "1";
        amount.min = chance ? "0" : "1";
        amount.max = chance ? "100" : "4294967295";
        amount.step = chance ? "any" : "1";
    });
    amount.step = "1";
}

const drawScripts = whenChanged((rules) => {
    $("script-list").replaceChildren(...rules.map(({ match, output }) => h("li", { class: "item stack" },
        h("code", null, match), h("pre", null, output))));
    setText($("count-scripts"), rules.length === 0 ? "" : String(rules.length));
});

async function loadCatalogue() {
    try {
        catalogue = (await get("faults")).catalogue;
        drawCatalogue();
    } catch {
        // Asked for again with the next link.
    }
}

export function startFaults() {
    const form = $("fault-form");
    form.elements.operation.append(h("option", { value: "all" }, "anything"),
        ...operations.map((name) => h("option", { value: name }, name)));
    form.elements.search.addEventListener("input", drawCatalogue);
    form.addEventListener("submit", (event) => event.preventDefault());
    startAmount();
    onSubmit($("script-form"), async (data, script) => {
        await post("scripts", { match: data.get("match"), output: data.get("output") });
        script.reset();
    });
    on("link", () => feed.linked && loadCatalogue());
    on("state", () => {
        drawArmed(feed.state.faults);
        drawScripts(feed.state.scripts);
    });
}
