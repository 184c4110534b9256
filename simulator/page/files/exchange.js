// One exchange: a line, and behind it all that went over the wire.

import { bytesBox } from "./bytes.js";
import { h, setText } from "./dom.js";
import { bytesText, secondsText } from "./format.js";

const clockInTime = /T(.*?)Z?$/;

function statusOf(exchange) {
    if (exchange.open) {
        return ["under way", "warn"];
    }
    if (exchange.status === 0) {
        return [exchange.fault === null ? "no reply" : "broken", "bad"];
    }
    const ok = exchange.status === 200 && exchange.reason === "OK";
    return [`${exchange.status} ${exchange.reason}`, ok ? "good" : "bad"];
}

/** The target's parameters that are not told otherwise, as a person reads them. */
function gist({ method, target }) {
    const query = target.split("?")[1];
    if (query === undefined) {
        return `${method} ${target}`;
    }
    const parts = query.split("&").filter((part) => !/^(op|id|format)=/.test(part));
    try {
        return decodeURIComponent(parts.join("  "));
    } catch {
        return parts.join("  ");
    }
}

function flagMark(flags) {
    const text = flags.length === 1 ? flags[0] : `${flags.length} flags`;
    return flags.length === 0 ? [] : [h("span", { class: "mark flag", title: flags.join("\n") }, text)];
}

function fact(name, value) {
    return h("div", null, h("dt", null, name), h("dd", { class: "mono" }, value));
}

function makePanel(exchange) {
    const facts = h("dl", { class: "facts" });
    const bodies = h("div", { class: "bodies" });
    const panel = h("div", { class: "exchange-panel", id: `exchange-${exchange.number}` }, facts, bodies);
    const url = `/sim/v1/traffic/${exchange.number}`;
    Promise.all([
        bytesBox(`${url}/request`, `request-${exchange.number}.bin`, "Request"),
        bytesBox(`${url}/reply`, `reply-${exchange.number}.bin`, "Reply"),
    ]).then((boxes) => bodies.replaceChildren(...boxes));
    let passed;
    panel.update = (now) => {
        const seconds = now.open ? "under way" : secondsText(now.seconds);
        facts.replaceChildren(fact("Number", String(now.number)), fact("Begun", now.time), fact("Peer", now.peer),
            fact("Took", seconds), fact("Sent to the simulator", bytesText(now.requestBytes)), fact("Sent back", bytesText(now.replyBytes)),
            ...(now.fault === null ? [] : [fact("Fault", now.fault)]), ...now.flags.map((flag) => fact("Flag", flag)));
        const bytes = `${now.requestBytes} ${now.replyBytes} ${now.open}`;
        if (passed !== undefined && passed !== bytes) {
            [...bodies.children].forEach((box) => box.redraw());
        }
        passed = bytes;
    };
    panel.update(exchange);
    return panel;
}

export function makeExchange(exchange) {
    const status = h("span", { class: "chip" });
    const marks = h("span", { class: "marks" });
    const size = h("span", { class: "x-size digits" });
    const took = h("span", { class: "x-took digits" });
    const row = h("button", { type: "button", class: "exchange-row", "aria-expanded": "false", "aria-controls": `exchange-${exchange.number}` },
        h("span", { class: "x-time digits" }, clockInTime.exec(exchange.time)?.[1] ?? exchange.time),
        h("span", { class: "x-op" }, exchange.operation || exchange.method || "–"),
        h("span", { class: "x-id mono" }, exchange.ids.join(", ")),
        h("span", { class: "x-gist mono" }, gist(exchange)), marks, status, size, took);
    const node = h("li", { class: "exchange" }, row);
    let now = exchange;
    let panel = null;
    row.addEventListener("click", () => {
        if (panel) {
            panel.remove();
            panel = null;
        } else {
            panel = makePanel(now);
            node.append(panel);
        }
        row.setAttribute("aria-expanded", String(panel !== null));
        node.classList.toggle("open", panel !== null);
    });
    let drawn = null;
    node.update = (next) => {
        if (next === drawn) {
            return;
        }
        now = next;
        drawn = next;
        const [word, colour] = statusOf(next);
        setText(status, word);
        status.className = `chip ${colour}`;
        marks.replaceChildren(...(next.fault === null ? [] : [h("span", { class: "mark fault" }, next.fault)]),
            ...flagMark(next.flags));
        setText(size, bytesText(next.requestBytes + next.replyBytes));
        setText(took, next.open ? "…" : secondsText(next.seconds));
        panel?.update(next);
    };
    return node;
}
