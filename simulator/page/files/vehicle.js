// The vehicle and the clock: what they do, and orders for them.

import { onClick, onSubmit, post } from "./api.js";
import { $, h, setText, whenChanged } from "./dom.js";
import { feed, on } from "./feed.js";
import { clockText, placeText, spanText } from "./format.js";
import { setPin, showOnMap, startMap } from "./map.js";

const speeds = [0, 1, 10, 60, 600];
const steps = [[1, "1 s"], [60, "1 min"], [600, "10 min"], [3600, "1 h"]];

function fact(name, value) {
    return h("div", null, h("dt", null, name), h("dd", null, value));
}

const drawFacts = whenChanged((facts) => {
    $("vehicle-facts").replaceChildren(...facts.map(([name, value]) => fact(name, value)));
});

/** Fields show what is, except the one that somebody is changing. */
function fill(form, values) {
    for (const [name, value] of Object.entries(values)) {
        const field = form.elements[name];
        const shown = String(value);
        if (field.dataset.shown !== shown && document.activeElement !== field) {
            field.value = shown;
            field.dataset.shown = shown;
        }
    }
}

function drawVehicle({ vehicle }) {
    setText($("vehicle-place"), placeText(vehicle.latitude, vehicle.longitude));
    const facts = [["Course", `${Math.round(vehicle.courseDegrees) % 360}°`],
        ["Speed", `${vehicle.speedMetresPerSecond} m/s`], ["Noise", `${vehicle.noiseMetres} m`],
        ["Fix", vehicle.error === null ? `every ${vehicle.fixIntervalSeconds} s` : `“${vehicle.error}”`]];
    drawFacts(facts);
    $("vehicle-facts").classList.toggle("wrong", vehicle.error !== null);
    $("error-end").hidden = vehicle.error === null;
    const { speedMetresPerSecond, noiseMetres, fixIntervalSeconds } = vehicle;
    fill($("motion-form"), { speedMetresPerSecond, noiseMetres, fixIntervalSeconds });
}

function drawClock({ clock }) {
    const [date, time] = clockText(clock.unixSeconds).split(" ");
    setText($("clock-date"), date);
    setText($("clock-time"), `${time ?? ""} UTC`);
    $("clock-time").title = `${spanText(clock.elapsedSeconds)} after the start`;
    setText($("clock-speed"), clock.speed === 0 ? "stands still" : `×${clock.speed}`);
    $("clock-speed").classList.toggle("warn", clock.speed !== 1);
    fill($("speed-form"), { speed: clock.speed });
    for (const button of $("speeds").children) {
        button.setAttribute("aria-pressed", String(Number(button.dataset.speed) === clock.speed));
    }
}

function startClock() {
    $("speeds").append(...speeds.map((speed) => onClick(
        h("button", { type: "button", "data-speed": speed, "aria-pressed": "false" }, speed === 0 ? "Stop" : `×${speed}`),
        () => post("clock", { speed }))));
    $("steps").append(...steps.map(([stepSeconds, label]) => onClick(
        h("button", { type: "button", "aria-label": `Step ${label} ahead` }, `+${label}`), () => post("clock", { stepSeconds }))));
    onSubmit($("speed-form"), (data) => {
        document.activeElement?.blur();
        return post("clock", { speed: Number(data.get("speed")) });
    });
}

function numbers(data) {
    return Object.fromEntries([...data].map(([name, text]) => [name, Number(text)]));
}

export function startVehicle() {
    const place = $("place-form");
    startMap(([latitude, longitude]) => {
        place.elements.latitude.value = latitude.toFixed(6);
        place.elements.longitude.value = longitude.toFixed(6);
    });
    onSubmit(place, async (data) => {
        await post("vehicle", numbers(data));
        setPin(null);
    });
    onSubmit($("motion-form"), (data) => post("vehicle", numbers(data)));
    onSubmit($("error-form"), async (data, form) => {
        await post("vehicle", { error: data.get("error") });
        form.reset();
    });
    onClick($("error-end"), () => post("vehicle", { error: null }));
    startClock();
    on("state", () => {
        drawVehicle(feed.state);
        drawClock(feed.state);
        showOnMap(feed.state);
    });
}
