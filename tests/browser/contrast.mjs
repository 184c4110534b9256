// Runs in the page: the texts that stand out too little from what is behind them.

/** Every visible text whose contrast is below 4.5 to 1, or 3 to 1 when it is large. */
export function lowContrast() {
    const canvas = document.createElement("canvas").getContext("2d", { willReadFrequently: true });
    const known = new Map();
    const mixed = (colours) => {
        const key = colours.join();
        if (!known.has(key)) {
            canvas.clearRect(0, 0, 1, 1);
            for (const colour of colours) {
                canvas.fillStyle = colour;
                canvas.fillRect(0, 0, 1, 1);
            }
            known.set(key, [...canvas.getImageData(0, 0, 1, 1).data].slice(0, 3));
        }
        return known.get(key);
    };
    const luminance = (colour) => {
        const [red, green, blue] = colour.map((value) => {
            const part = value / 255;
            return part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
        });
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    };
    const behind = (node) => {
        const colours = [];
        for (let each = node; each; each = each.parentElement) {
            colours.unshift(getComputedStyle(each).backgroundColor);
        }
        return ["white", ...colours];
    };
    const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    const faint = [];
    while (texts.nextNode()) {
        const node = texts.currentNode.parentElement;
        if (texts.currentNode.data.trim() === "" || !node.checkVisibility({ visibilityProperty: true }) || node.closest(".unseen, svg, :disabled")) {
            continue;
        }
        const style = getComputedStyle(node);
        const ground = behind(node);
        const [light, dark] = [luminance(mixed(ground)), luminance(mixed([...ground, style.color]))].sort((a, b) => b - a);
        const contrast = (light + 0.05) / (dark + 0.05);
        const size = parseFloat(style.fontSize);
        if (contrast < (size >= 24 || (size >= 18.66 && style.fontWeight >= 700) ? 3 : 4.5)) {
            faint.push(`${texts.currentNode.data.trim()}: ${contrast.toFixed(2)}`);
        }
    }
    return faint;
}
