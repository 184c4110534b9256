// Tabs, and on a narrow screen the one view that is shown.

/** Makes a tab list work: a click, the arrow keys, Home and End. */
function startTabs(list) {
    const tabs = [...list.querySelectorAll("[role=tab]")];
    const select = (tab, focus) => {
        for (const each of tabs) {
            const on = each === tab;
            each.setAttribute("aria-selected", String(on));
            each.tabIndex = on ? 0 : -1;
            document.getElementById(each.getAttribute("aria-controls")).hidden = !on;
        }
        if (focus) {
            tab.focus();
        }
    };
    for (const tab of tabs) {
        const panel = document.getElementById(tab.getAttribute("aria-controls"));
        tab.id = `${panel.id}-tab`;
        panel.setAttribute("aria-labelledby", tab.id);
        tab.addEventListener("click", () => select(tab, false));
    }
    list.addEventListener("keydown", (event) => {
        const at = tabs.indexOf(document.activeElement);
        const next = { ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: tabs.length - 1 }[event.key];
        if (next !== undefined) {
            event.preventDefault();
            select(tabs[(next + tabs.length) % tabs.length], true);
        }
    });
    select(tabs[0], false);
}

export function showTab(panel) {
    document.getElementById(`${panel}-tab`).click();
}

export function showView(name) {
    document.body.dataset.view = name;
    for (const button of document.querySelectorAll(".views button")) {
        if (button.dataset.view === name) {
            button.setAttribute("aria-current", "page");
        } else {
            button.removeAttribute("aria-current");
        }
    }
}

export function startViews() {
    document.querySelectorAll("[role=tablist]").forEach(startTabs);
    for (const button of document.querySelectorAll(".views button")) {
        button.addEventListener("click", () => {
            showView(button.dataset.view);
            window.scrollTo(0, 0);
        });
    }
    showView("payloads");
}
