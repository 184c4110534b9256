// Bytes to look at: as text in which nothing is hidden, and in hexadecimal.

import { fetchBytes } from "./api.js";
import { $, h } from "./dom.js";
import { bytesText } from "./format.js";

const firstLook = 16 * 1024;
const perRow = 16;
const names = { 0: "\\0", 9: "\\t", 13: "\\r" };

function hex(byte) {
    return byte.toString(16).padStart(2, "0").toUpperCase();
}

/** The length of the UTF-8 sequence at `at` that stands for a printable character; 0 if there is none. */
function utf8Length(bytes, at) {
    const lead = bytes[at];
    const length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc2 ? 2 : 0;
    if (length === 0 || at + length > bytes.length) {
        return 0;
    }
    try {
        const text = new TextDecoder("utf-8", { fatal: true, ignoreBOM: true }).decode(bytes.subarray(at, at + length));
        return /^[\p{L}\p{N}\p{P}\p{S}\p{Zs}]$/u.test(text) ? length : 0;
    } catch {
        return 0;
    }
}

/** Printable text as it is, line ends with what they are made of, every other byte as \xHH. */
export function textView(bytes) {
    const view = h("pre", { class: "bytes", tabindex: "0" });
    const decoder = new TextDecoder();
    let plain = [];
    const flush = () => {
        if (plain.length > 0) {
            view.append(decoder.decode(Uint8Array.from(plain)));
            plain = [];
        }
    };
    const escape = (text) => {
        flush();
        view.append(h("i", { class: "escape" }, text));
    };
    for (let at = 0; at < bytes.length; ++at) {
        const byte = bytes[at];
        const length = byte < 0x80 ? 0 : utf8Length(bytes, at);
        if (byte === 10) {
            escape("\\n");
            view.append("\n");
        } else if (byte >= 0x20 && byte < 0x7f) {
            plain.push(byte);
        } else if (length > 0) {
            plain.push(...bytes.subarray(at, at + length));
            at += length - 1;
        } else {
            escape(names[byte] ?? `\\x${hex(byte)}`);
        }
    }
    flush();
    return view;
}

export function hexView(bytes) {
    const rows = [];
    for (let at = 0; at < bytes.length; at += perRow) {
        const row = [...bytes.subarray(at, at + perRow)];
        const columns = row.map(hex);
        columns.splice(8, 0, ...(row.length > 8 ? [""] : []));
        const text = row.map((byte) => (byte >= 0x20 && byte < 0x7f ? String.fromCharCode(byte) : "·")).join("");
        rows.push(`${at.toString(16).padStart(6, "0")}  ${columns.join(" ").padEnd(perRow * 3)}  ${text}`);
    }
    return h("pre", { class: "bytes hex", tabindex: "0" }, rows.join("\n"));
}

/** Text and hex to switch between, over what `url` has. Resolves once it is there. */
export async function bytesBox(url, name, label) {
    const box = h("div", { class: "bytes-box" });
    const place = h("div");
    let form = "text";
    let most = firstLook;
    const draw = async () => {
        let content;
        try {
            content = await fetchBytes(url, most);
        } catch (failure) {
            place.replaceChildren(h("p", { class: "hint" }, failure.message || "The bytes cannot be fetched."));
            return;
        }
        const { bytes, more } = content;
        const view = bytes.length === 0 ? h("p", { class: "hint" }, "Nothing: not a single byte.")
            : form === "text" ? textView(bytes) : hexView(bytes);
        view.setAttribute("aria-label", `${label} as ${form}`);
        place.replaceChildren(view);
        if (more) {
            const button = h("button", { type: "button", class: "quiet wide" }, `The first ${bytesText(most)} are shown. Show more`);
            button.addEventListener("click", () => {
                most *= 4;
                draw();
            });
            place.append(button);
        }
    };
    const choice = (value, text) => {
        const button = h("button", { type: "button", "aria-pressed": String(form === value) }, text);
        button.addEventListener("click", () => {
            form = value;
            for (const each of choices) {
                each.setAttribute("aria-pressed", String(each === button));
            }
            draw();
        });
        return button;
    };
    const choices = [choice("text", "Text"), choice("hex", "Hex")];
    box.append(h("div", { class: "bytes-head" }, h("span", { class: "bytes-label" }, label),
        h("div", { class: "segments", role: "group", "aria-label": `Show ${label} as` }, choices),
        h("a", { class: "button quiet", href: url, download: name, "aria-label": `Download ${label}` }, "Download")), place);
    box.redraw = draw;
    await draw();
    return box;
}

export async function showBytes(title, url, name) {
    const dialog = $("bytes");
    const close = h("button", { type: "button", class: "quiet icon", "aria-label": "Close" }, "×");
    close.addEventListener("click", () => dialog.close());
    const head = h("div", { class: "card-head" }, h("h2", { id: "bytes-title" }, title), close);
    const box = await bytesBox(url, name, title);
    dialog.replaceChildren(head, box);
    dialog.showModal();
}
