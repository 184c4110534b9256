// The theme's switch, and the state of the link.

import { $, setText } from "./dom.js";
import { feed, on } from "./feed.js";

const themes = { auto: ["◐", "as the system is"], light: ["☀", "light"], dark: ["☾", "dark"] };

function drawTheme() {
    const [sign, text] = themes[document.documentElement.dataset.theme];
    setText($("theme"), sign);
    $("theme").setAttribute("aria-label", `Theme: ${text}`);
    $("theme").title = `Theme: ${text}`;
}

export function switchTheme() {
    const names = Object.keys(themes);
    const root = document.documentElement;
    root.dataset.theme = names[(names.indexOf(root.dataset.theme) + 1) % names.length];
    try {
        localStorage.setItem("theme", root.dataset.theme);
    } catch {
        // It lasts as long as the page, then.
    }
    drawTheme();
}

function drawLink() {
    setText($("link"), feed.linked ? "Live" : "Reconnecting…");
    $("link").classList.toggle("live", feed.linked);
    document.body.classList.toggle("stale", !feed.linked && feed.state !== null);
}

export function startAppearance() {
    if (!(document.documentElement.dataset.theme in themes)) {
        document.documentElement.dataset.theme = "auto";
    }
    $("theme").addEventListener("click", switchTheme);
    drawTheme();
    on("link", drawLink);
}
