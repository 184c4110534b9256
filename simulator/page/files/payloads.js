// The list of payloads, its search, and which one is chosen.

import { $, h, keyed, setText } from "./dom.js";
import { feed, on } from "./feed.js";
import { plural, spanText } from "./format.js";
import { showView } from "./views.js";

const listeners = [];
let chosen = idOfAddress();
let guessed = chosen === "";

/** The payload that the page's address names; "" for none. */
export function idOfAddress() {
    try {
        return decodeURIComponent(location.hash.slice(1));
    } catch {
        return "";
    }
}

/** Calls back when the chosen payload is another one, or has news. */
export function onChosen(listener) {
    listeners.push(listener);
}

export function chosenPayload() {
    return feed.state?.payloads.find((payload) => payload.id === chosen);
}

export function choose(id, view = true) {
    chosen = id;
    guessed = false;
    history.replaceState(null, "", id === "" ? "#" : `#${encodeURIComponent(id)}`);
    document.body.classList.toggle("has-payload", id !== "");
    if (view) {
        showView("payloads");
    }
    draw();
}

/** Of what a payload is made up at a glance: a word, and the colour that goes with it. */
export function standing(payload) {
    if (payload.off) {
        return ["off", "off"];
    }
    if (payload.shutdown?.pending) {
        return ["shutting down", "warn"];
    }
    if (payload.heldPolls > 0) {
        return ["polling", "good"];
    }
    const silence = feed.state.clock.unixSeconds - payload.lastSeenUnixSeconds;
    return silence < 60 ? ["heard now", "good"] : [`silent for ${spanText(silence - silence % 60)}`, "idle"];
}

function nameOf(payload) {
    return payload.registration?.description || payload.registration?.tag || payload.hostId || "not registered";
}

function makeRow() {
    const dot = h("span", { class: "dot" });
    const id = h("span", { class: "payload-id" });
    const name = h("span", { class: "payload-name" });
    const state = h("span", { class: "unseen" });
    const waiting = h("span", { class: "chip" });
    const button = h("button", { type: "button", class: "payload" }, dot,
        h("span", { class: "payload-text" }, id, name), state, waiting);
    const row = h("li", null, button);
    row.update = (payload) => {
        const [word, colour] = standing(payload);
        const queued = payload.commands.filter((command) => command.state !== "answered").length;
        dot.className = `dot ${colour}`;
        setText(id, payload.id);
        setText(name, `${word} · ${nameOf(payload)}`);
        setText(waiting, queued === 0 ? "" : String(queued));
        waiting.hidden = queued === 0;
        waiting.title = `${plural(queued, "command")} without an answer`;
        if (payload.id === chosen) {
            button.setAttribute("aria-current", "true");
        } else {
            button.removeAttribute("aria-current");
        }
        button.onclick = () => choose(payload.id);
    };
    return row;
}

function words() {
    return $("payload-search").value.toLowerCase().split(/\s+/).filter(Boolean);
}

/** In the order in which a person counts: payload-2 comes before payload-10. */
const inOrder = new Intl.Collator("en", { numeric: true });

function shownPayloads() {
    const wanted = words();
    return feed.state.payloads.sort((a, b) => inOrder.compare(a.id, b.id)).filter((payload) => {
        const text = `${payload.id} ${payload.hostId} ${nameOf(payload)} ${standing(payload)[0]}`.toLowerCase();
        return wanted.every((word) => text.includes(word));
    });
}

function drawNone(shown) {
    const none = $("payload-none");
    none.hidden = shown.length > 0;
    if (none.hidden) {
        return;
    }
    if (feed.state.payloads.length > 0) {
        none.replaceChildren(h("p", null, "No payload fits the search."));
        return;
    }
    if (none.childElementCount < 2) {
        const server = location.host;
        none.replaceChildren(
            h("p", { class: "lead" }, "No payload yet"),
            h("p", null, "One appears as soon as it is heard of, or has an order. Let one register and poll:"),
            h("pre", null, `tavo register -s ${server} -i P1 examples/registration.json\ntavo poll -s ${server} -i P1`),
            h("p", null, "or leave it a first command:"),
            h("pre", null, `curl -d '{"id":"P1","command":"status"}' \\\n  http://${server}/sim/v1/commands`));
    }
}

function draw() {
    if (!feed.state) {
        return;
    }
    const { payloads } = feed.state;
    if (guessed && payloads.length > 0) {
        chosen = payloads.some((payload) => payload.id === chosen) ? chosen : payloads[0].id;
    }
    const shown = shownPayloads();
    setText($("payload-count"), shown.length === payloads.length ? String(payloads.length)
        : `${shown.length} of ${payloads.length}`);
    keyed($("payload-list"), shown, (payload) => payload.id, makeRow);
    drawNone(shown);
    listeners.forEach((listener) => listener());
}

/** The next payload of the list, or the one before with -1. */
export function step(by) {
    const shown = feed.state ? shownPayloads() : [];
    if (shown.length > 0) {
        const at = shown.findIndex((payload) => payload.id === chosen);
        const next = at < 0 ? 0 : Math.min(shown.length - 1, Math.max(0, at + by));
        choose(shown[next].id);
        $("payload-list").querySelector("[aria-current]")?.scrollIntoView({ block: "nearest" });
    }
}

export function startPayloads() {
    document.body.classList.toggle("has-payload", chosen !== "");
    $("payload-search").addEventListener("input", draw);
    $("payload-search").addEventListener("keydown", (event) => {
        if (event.key === "Enter" && feed.state && shownPayloads().length > 0) {
            choose(shownPayloads()[0].id);
        }
    });
    $("detail-back").addEventListener("click", () => {
        choose("");
        $("payload-search").focus();
    });
    on("state", draw);
}
