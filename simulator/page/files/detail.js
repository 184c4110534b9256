// The chosen payload: its head, power and shutdown.

import { onClick, onSubmit, post } from "./api.js";
import { startCommands } from "./commands.js";
import { $, h, keyed, setText, whenChanged } from "./dom.js";
import { spanText } from "./format.js";
import { choose, chosenPayload, idOfAddress, onChosen, standing } from "./payloads.js";
import { startReceived } from "./received.js";
import { drawRegistration } from "./registration.js";

function chip(text, kind) {
    return h("span", { class: `chip ${kind}` }, text);
}

const drawChips = whenChanged((chips) => {
    $("detail-state").replaceChildren(...chips.map(([text, kind]) => chip(text, kind)));
});

function drawHead(payload) {
    setText($("detail-title"), payload.id);
    const chips = [standing(payload)];
    if (payload.registrationComplete) {
        chips.push(["registered", "good"]);
    } else if (payload.registration) {
        chips.push(["registering", "warn"]);
    }
    if (payload.hostId) {
        chips.push([`host ${payload.hostId}`, "plain"]);
    }
    if (payload.shutdown && !payload.shutdown.pending) {
        chips.push([`shuts down in ${spanText(payload.shutdown.inSeconds)}`, "warn"]);
    }
    drawChips(chips);
}

/** name is "" for the main switch, on is null when nobody has set it yet. */
function switchesOf(payload) {
    const named = Object.entries(payload.switches).map(([name, on]) => ({ name, on }));
    return [{ name: "", on: payload.mainSwitch }, ...named];
}

function makeSwitch({ name }) {
    const word = h("span", { class: "muted" });
    const knob = h("button", { type: "button", role: "switch", class: "switch" });
    const label = name === "" ? "Main switch" : name;
    knob.setAttribute("aria-label", label);
    onClick(knob, () => {
        const body = { id: chosenPayload().id, on: knob.getAttribute("aria-checked") !== "true" };
        return post("switches", name === "" ? body : { ...body, name });
    });
    const row = h("li", null, h("span", { class: name === "" ? "" : "mono" }, label), word, knob);
    row.update = ({ on }) => {
        knob.setAttribute("aria-checked", String(on === true));
        setText(word, on === null ? "not set yet" : on ? "on" : "off");
    };
    return row;
}

function shutdownText({ shutdown, off }) {
    if (off) {
        return "The payload said that it is off.";
    }
    if (!shutdown) {
        return "No shutdown is planned.";
    }
    if (!shutdown.pending) {
        return `Planned in ${spanText(shutdown.inSeconds)}. The payload may postpone it.`;
    }
    return shutdown.told ? "The payload was told, and is to turn itself off."
        : "Due: the next poll that asks for it is told.";
}

function drawPower(payload) {
    keyed($("switch-list"), switchesOf(payload), ({ name }) => `${payload.id}\n${name}`, makeSwitch);
    setText($("shutdown-now"), shutdownText(payload));
    $("shutdown-now").classList.toggle("planned", payload.shutdown !== null);
    $("shutdown-cancel").hidden = payload.shutdown === null;
}

const drawNone = whenChanged((id) => {
    $("detail-none").replaceChildren(
        h("p", { class: "lead" }, id === "" ? "Nothing chosen" : `${id} is not known here`),
        h("p", null, "Choose a payload, or queue a command for one that is still to come:"));
    const input = h("input", { "aria-label": "Identifier", placeholder: "P1", required: true, autocomplete: "off", value: id });
    const form = h("form", { class: "row" }, input, h("button", { class: "primary" }, "Queue “status”"));
    onSubmit(form, async () => {
        await post("commands", { id: input.value, command: "status" });
        choose(input.value);
    });
    $("detail-none").append(form);
});

function draw() {
    const payload = chosenPayload();
    $("detail-none").hidden = payload !== undefined;
    $("detail-body").hidden = payload === undefined;
    $("forget").hidden = payload === undefined;
    if (payload === undefined) {
        setText($("detail-title"), "No payload");
        drawChips([]);
        drawNone(idOfAddress());
        return;
    }
    drawHead(payload);
    drawPower(payload);
    drawRegistration(payload);
}

export function startDetail() {
    onChosen(draw);
    onSubmit($("switch-form"), async (data, form) => {
        await post("switches", { id: chosenPayload().id, name: data.get("name"), on: true });
        form.reset();
    });
    onSubmit($("shutdown-form"), (data) =>
        post("shutdown", { id: chosenPayload().id, inSeconds: Number(data.get("inSeconds")) }));
    onClick($("shutdown-cancel"), () => post("shutdown", { id: chosenPayload().id, cancel: true }));
    onClick($("forget"), async () => {
        await post("forget", { id: chosenPayload().id });
        choose("");
    });
    startCommands();
    startReceived();
}
