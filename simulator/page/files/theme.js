// Sets the theme before anything is drawn. "auto" follows the system.
"use strict";
(() => {
    let theme = "auto";
    try {
        theme = localStorage.getItem("theme") || theme;
    } catch {
        // A browser that keeps nothing follows the system.
    }
    document.documentElement.dataset.theme = theme;
})();
