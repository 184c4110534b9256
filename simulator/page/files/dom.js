// Makes and changes elements.

export const $ = (id) => document.getElementById(id);

function apply(node, props) {
    for (const [name, value] of Object.entries(props ?? {})) {
        if (name.startsWith("on")) {
            node.addEventListener(name.slice(2), value);
        } else if (value === true) {
            node.setAttribute(name, "");
        } else if (value !== false && value !== null && value !== undefined) {
            node.setAttribute(name, value);
        }
    }
}

/** An element with attributes, "on..." listeners and children; null children are left out. */
export function h(name, props, ...children) {
    const node = document.createElement(name);
    apply(node, props);
    node.append(...children.flat().filter((child) => child !== null && child !== undefined));
    return node;
}

/** The same for SVG. */
export function svg(name, props, ...children) {
    const node = document.createElementNS("http://www.w3.org/2000/svg", name);
    apply(node, props);
    node.append(...children);
    return node;
}

/** Touches the document only when the text is another one. */
export function setText(node, text) {
    if (node.textContent !== text) {
        node.textContent = text;
    }
}

const kept = new WeakMap();

/**
 * Lets the children of `parent` be those of `items`, in their order. `make(item)` gives a child, whose
 * `update(item)`, if it has one, is called now and whenever the item is shown again.
 */
export function keyed(parent, items, keyOf, make) {
    const before = kept.get(parent) ?? new Map();
    const now = new Map();
    let place = parent.firstElementChild;
    for (const item of items) {
        const key = keyOf(item);
        const node = before.get(key) ?? make(item);
        before.delete(key);
        now.set(key, node);
        node.update?.(item);
        if (node === place) {
            place = place.nextElementSibling;
        } else {
            parent.insertBefore(node, place);
        }
    }
    for (const node of before.values()) {
        node.remove();
    }
    kept.set(parent, now);
}

/** Calls `draw` only when `value` differs, as JSON, from that of the last call. */
export function whenChanged(draw) {
    let last;
    return (value, ...rest) => {
        const text = JSON.stringify(value);
        if (text !== last) {
            last = text;
            draw(value, ...rest);
        }
    };
}

/** One drawing for any number of calls within a frame. */
export function perFrame(draw) {
    let waits = false;
    return () => {
        if (!waits) {
            waits = true;
            // A page in the background has no frames, but its title and counts are still read.
            const begin = document.hidden ? (f) => setTimeout(f, 250) : requestAnimationFrame;
            begin(() => {
                waits = false;
                draw();
            });
        }
    };
}
