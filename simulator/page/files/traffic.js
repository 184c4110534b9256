// The exchanges of payloads with the simulator: filtered, paused, cleared.

import { onClick, remove } from "./api.js";
import { $, h, keyed, perFrame, setText } from "./dom.js";
import { makeExchange } from "./exchange.js";
import { feed, forgetExchanges, on } from "./feed.js";
import { operations } from "./operations.js";

const page = 200;
let most = page;
/** The exchanges as they were when the traffic was paused. */
let paused = null;

function filters() {
    const { text, operation, payload, status, fault, flags } = $("filter").elements;
    return { words: text.value.toLowerCase().split(/\s+/).filter(Boolean), operation: operation.value,
        payload: payload.value, status: status.value, fault: fault.checked, flags: flags.checked };
}

function hasStatus(exchange, wanted) {
    switch (wanted) {
    case "ok":
        return exchange.status === 200 && exchange.reason === "OK";
    case "refused":
        return exchange.status !== 0 && !hasStatus(exchange, "ok");
    case "none":
        return exchange.status === 0 && !exchange.open;
    case "open":
        return exchange.open;
    default:
        return true;
    }
}

function fits(exchange, filter) {
    if ((filter.operation !== "" && exchange.operation !== filter.operation)
        || (filter.payload !== "" && !exchange.ids.includes(filter.payload))
        || !hasStatus(exchange, filter.status)
        || (filter.fault && exchange.fault === null)
        || (filter.flags && exchange.flags.length === 0)) {
        return false;
    }
    const { method, target, status, reason, fault, flags, peer } = exchange;
    const text = [method, target, decoded(target), status || "", reason, fault ?? "", ...flags, peer].join(" ").toLowerCase();
    return filter.words.every((word) => text.includes(word));
}

function decoded(target) {
    try {
        return decodeURIComponent(target);
    } catch {
        return "";
    }
}

function isFiltering({ words, operation, payload, status, fault, flags }) {
    return words.length > 0 || operation !== "" || payload !== "" || status !== "" || fault || flags;
}

/** The choices of a list, without losing what is chosen. */
function offer(select, names) {
    const before = [...select.options].slice(1).map((option) => option.value);
    if (before.join("\n") !== names.join("\n")) {
        const { value } = select;
        select.replaceChildren(select.options[0], ...names.map((name) => h("option", { value: name }, name)));
        select.value = names.includes(value) ? value : "";
    }
}

function drawNone(all, shown, filtering) {
    const none = $("traffic-none");
    none.hidden = shown > 0;
    if (shown > 0) {
        none.replaceChildren();
    } else if (all > 0 && filtering) {
        none.replaceChildren(h("p", null, "No exchange fits the filter."));
    } else if (none.childElementCount < 2) {
        none.replaceChildren(h("p", { class: "lead" }, "No traffic yet"),
            h("p", null, "Every request of a payload appears here while it is under way. Try one:"),
            h("pre", null, `curl 'http://${location.host}/xp?op=pwr&id=P1&cmd=on'`));
    }
}

const draw = perFrame(() => {
    const all = paused ?? [...feed.exchanges.values()].sort((a, b) => a.number - b.number);
    const filter = filters();
    const filtering = isFiltering(filter);
    const fitting = filtering ? all.filter((exchange) => fits(exchange, filter)) : all;
    const shown = fitting.slice(-most).reverse();
    keyed($("exchange-list"), shown, ({ number }) => number, makeExchange);
    setText($("traffic-count"), filtering ? `${fitting.length} of ${all.length}` : String(all.length));
    $("filter").querySelector("[type=reset]").hidden = !filtering;
    $("traffic-more").hidden = fitting.length <= most;
    drawNone(all.length, shown.length, filtering);
    drawPause();
    const seen = new Set(all.map((exchange) => exchange.operation));
    offer($("filter").elements.operation, operations.concat([...seen].filter((name) => name !== "" && !operations.includes(name)).sort()));
    offer($("filter").elements.payload, [...new Set(all.flatMap((exchange) => exchange.ids))].sort());
});

function drawPause() {
    const last = paused?.at(-1)?.number ?? 0;
    const missed = paused ? [...feed.exchanges.keys()].filter((number) => number > last).length : 0;
    setText($("pause"), !paused ? "Pause" : missed > 0 ? `Resume (${missed} new)` : "Resume");
    $("pause").setAttribute("aria-pressed", String(paused !== null));
    $("traffic").classList.toggle("paused", paused !== null);
}

export function togglePause() {
    paused = paused ? null : [...feed.exchanges.values()].sort((a, b) => a.number - b.number);
    draw();
}

/** Up and down go from one exchange to the next. */
function moveInList(event) {
    const by = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    const row = event.target.closest?.(".exchange-row");
    if (by && row) {
        event.preventDefault();
        const rows = [...$("exchange-list").querySelectorAll(".exchange-row")];
        rows[rows.indexOf(row) + by]?.focus();
    }
}

export function startTraffic() {
    const form = $("filter");
    form.addEventListener("submit", (event) => event.preventDefault());
    form.addEventListener("input", () => {
        most = page;
        draw();
    });
    form.addEventListener("reset", () => setTimeout(draw));
    $("pause").addEventListener("click", togglePause);
    $("traffic-more").addEventListener("click", () => {
        most += page;
        draw();
    });
    $("exchange-list").addEventListener("keydown", moveInList);
    onClick($("traffic-clear"), async () => {
        await remove("traffic");
        paused = null;
        forgetExchanges();
    });
    on("traffic", draw);
    draw();
}
