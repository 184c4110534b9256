// The registration document of a payload, as tables.

import { onClick } from "./api.js";
import { showBytes } from "./bytes.js";
import { $, h, whenChanged } from "./dom.js";
import { shellWord } from "./format.js";

const known = ["tag", "description", "corbaName", "hostID", "boardAddress", "reportingAddress"];
const interfaceColumns = ["pn", "swver"];
const hardwareColumns = ["manufacturer", "model", "pn", "serial", "swver", "tty", "connector", "power"];

function valueText(value) {
    return typeof value === "string" ? value : JSON.stringify(value);
}

function members(document) {
    const others = Object.keys(document).filter((name) =>
        !known.includes(name) && name !== "interface" && name !== "hardware");
    const names = [...known.filter((name) => name in document), ...others];
    return h("table", { class: "members" }, h("tbody", null, names.map((name) => h("tr", null,
        h("th", { scope: "row" }, name), h("td", { class: "mono" }, valueText(document[name]))))));
}

/** One row for each entry. Columns that no entry has are left out, others than the known ones come last. */
function entries(title, list, columns) {
    if (!Array.isArray(list) || list.length === 0) {
        return [h("h3", null, title), h("p", { class: "hint" }, "None given.")];
    }
    const rows = list.map((entry) => (entry !== null && typeof entry === "object" ? entry : { value: entry }));
    const used = new Set(rows.flatMap((row) => Object.keys(row)));
    const shown = [...columns.filter((name) => used.has(name)), ...[...used].filter((name) => !columns.includes(name))];
    const head = h("thead", null, h("tr", null, shown.map((name) => h("th", { scope: "col" }, name))));
    const body = h("tbody", null, rows.map((row) => h("tr", null, shown.map((name) =>
        h("td", { class: "mono" }, name in row ? valueText(row[name]) : "")))));
    return [h("h3", null, title), h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": title },
        h("table", null, h("caption", { class: "unseen" }, title), head, body))];
}

const draw = whenChanged(({ id, registration, complete }) => {
    const panel = $("tab-registration");
    if (registration === null || typeof registration !== "object") {
        panel.replaceChildren(h("div", { class: "empty small" },
            h("p", null, "Not registered yet. The payload sends its document with ", h("code", null, "meta"), ":"),
            h("pre", null, `tavo register -s ${location.host} -i ${shellWord(id)} examples/registration.json`)));
        return;
    }
    const whole = onClick(h("button", { type: "button", class: "quiet" }, "The whole document"), () =>
        showBytes(`Registration of ${id}`, `/sim/v1/registration?id=${encodeURIComponent(id)}`, "registration.json"));
    panel.replaceChildren(
        h("div", { class: "row spread" }, h("p", { class: "hint" },
            complete ? "Complete, as the payload has said." : "Not declared complete yet."), whole),
        members(registration),
        ...entries("Interface", registration.interface, interfaceColumns),
        ...entries("Hardware", registration.hardware, hardwareColumns));
});

export function drawRegistration(payload) {
    draw({ id: payload.id, registration: payload.registration, complete: payload.registrationComplete });
}
