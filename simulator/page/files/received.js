// What the chosen payload handed over: files, packets, and the scripts it asked for.

import { onClick } from "./api.js";
import { showBytes } from "./bytes.js";
import { $, h, setText, whenChanged } from "./dom.js";
import { bytesText } from "./format.js";
import { chosenPayload, onChosen } from "./payloads.js";

const most = 200;
const kinds = { upload: "file", uploadlegacy: "legacy file", jar: "JAR" };

function item(title, notes, url, name) {
    const look = onClick(h("button", { type: "button", class: "quiet", "aria-label": `Look at ${title}` }, "Look"),
        () => showBytes(title, url, name));
    return h("li", { class: "item" },
        h("div", { class: "item-text" }, h("span", { class: "mono" }, title), h("span", { class: "muted" }, notes)),
        look, h("a", { class: "button quiet", href: url, download: name, "aria-label": `Download ${title}` }, "Download"));
}

function fileItem(file) {
    const parts = [kinds[file.operation] ?? file.operation, bytesText(file.size)];
    if (file.remote) {
        parts.push(`for ${file.remote}`);
    }
    parts.push(`SHA-256 ${file.sha256.slice(0, 12)}…`);
    const node = item(file.name, parts.join(" · "), `/sim/v1/files/${encodeURIComponent(file.name)}`, file.name);
    node.title = `From ${file.fileName}\nSHA-256 ${file.sha256}`;
    return node;
}

function packetItem(packet) {
    const text = packet.text.length > 48 ? `${packet.text.slice(0, 48)}…` : packet.text;
    return item(`Packet ${packet.number}`, `${bytesText(packet.size)} · ${text}`, `/sim/v1/packets/${packet.number}`,
        `packet-${packet.number}.bin`);
}

function scriptItem(script) {
    return h("li", { class: "item stack" }, h("code", null, `$ ${script.command}`), h("pre", null, script.output));
}

/** Newest first. */
function part(title, list, make, none) {
    const shown = list.slice(-most).reverse().map(make);
    return [h("h3", null, title, " ", h("span", { class: "count" }, String(list.length))),
        shown.length === 0 ? h("p", { class: "hint" }, none) : h("ul", { class: "items" }, shown)];
}

const draw = whenChanged(({ files, packets, scripts }) => {
    $("tab-received").replaceChildren(
        ...part("Files", files, fileItem, "No file or JAR was handed over yet."),
        ...part("Packets", packets, packetItem, "No raw packet was sent yet."),
        ...part("Scripts", scripts, scriptItem, "No script was asked for yet. What they are answered is set under “Scripts”."));
});

export function startReceived() {
    onChosen(() => {
        const payload = chosenPayload();
        if (payload) {
            const { id, files, packets, scripts } = payload;
            const count = files.length + packets.length + scripts.length;
            setText($("count-received"), count === 0 ? "" : String(count));
            draw({ id, files, packets, scripts });
        }
    });
}
