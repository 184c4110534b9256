// The vehicle on a map: north is up, distances are true near the middle.

import { $, h, svg, whenChanged } from "./dom.js";
import { distanceText } from "./format.js";

const metresPerDegree = 111195;
const longestTrail = 900;
const least = 20;
const most = 2e6;

/** The middle of the map, and the metres that its smaller side shows. */
const view = { latitude: 0, longitude: 0, metres: 1000, follows: true, fitted: false };
const size = { width: 400, height: 300 };
const trail = [];
let vehicle = null;
let pin = null;
let picked = () => {};

const shapes = {
    grid: svg("g", { class: "map-grid" }),
    track: svg("polygon", { class: "map-track" }),
    trail: svg("path", { class: "map-trail" }),
    pin: svg("g", { class: "map-pin", visibility: "hidden" }, svg("circle", { r: 5 }), svg("path", { d: "M-10 0H-4M4 0H10M0 -10V-4M0 4V10" })),
    vehicle: svg("g", { class: "map-vehicle" }, svg("circle", { class: "halo", r: 13 }), svg("path", { d: "M0 -9L6 8L0 4.5L-6 8Z" })),
    north: svg("g", { class: "map-north" }, svg("path", { d: "M0 -11L5 5L0 2L-5 5Z" }), svg("text", { y: 18 }, "N")),
    scale: svg("g", { class: "map-scale" }, svg("path"), svg("text")),
};

function scale() {
    return Math.min(size.width, size.height) / view.metres;
}

function shrink() {
    return Math.max(0.01, Math.cos((view.latitude * Math.PI) / 180));
}

/** Where a place is on the map, in pixels. */
function point([latitude, longitude]) {
    const east = ((((longitude - view.longitude) % 360) + 540) % 360) - 180;
    return [size.width / 2 + east * metresPerDegree * shrink() * scale(),
        size.height / 2 - (latitude - view.latitude) * metresPerDegree * scale()];
}

function placeAt(x, y) {
    const latitude = view.latitude - (y - size.height / 2) / scale() / metresPerDegree;
    const longitude = view.longitude + (x - size.width / 2) / scale() / metresPerDegree / shrink();
    return [Math.max(-90, Math.min(90, latitude)), ((((longitude + 180) % 360) + 360) % 360) - 180];
}

const text = ([x, y]) => `${x.toFixed(1)},${y.toFixed(1)}`;

/** 1, 2 or 5 with zeroes, not above `metres`. */
function round(metres) {
    const power = 10 ** Math.floor(Math.log10(metres));
    return [5, 2, 1].find((digit) => digit * power <= metres) * power;
}

function drawGrid(unit) {
    const step = unit * scale();
    const [x0, y0] = [(size.width / 2) % step, (size.height / 2) % step];
    // The grid belongs to the sea, not to the screen.
    const east = ((view.longitude * metresPerDegree * shrink()) % unit) * scale();
    const north = ((view.latitude * metresPerDegree) % unit) * scale();
    let lines = "";
    for (let x = x0 - east - step; x < size.width + step; x += step) {
        lines += `M${x.toFixed(1)} 0V${size.height}`;
    }
    for (let y = y0 + north - step; y < size.height + step; y += step) {
        lines += `M0 ${y.toFixed(1)}H${size.width}`;
    }
    shapes.grid.replaceChildren(svg("path", { d: lines }));
}

function drawScale(unit) {
    const length = unit * scale();
    const [line, label] = shapes.scale.children;
    line.setAttribute("d", `M0 -5V0H${length.toFixed(1)}V-5`);
    label.setAttribute("x", (length / 2).toFixed(1));
    label.setAttribute("y", "-6");
    label.textContent = distanceText(unit);
    shapes.scale.setAttribute("transform", `translate(14 ${size.height - 12})`);
    shapes.north.setAttribute("transform", `translate(${size.width - 20} 20)`);
}

function draw() {
    if (!vehicle) {
        return;
    }
    if (view.follows) {
        [view.latitude, view.longitude] = [vehicle.latitude, vehicle.longitude];
    }
    const unit = round(90 / scale());
    drawGrid(unit);
    drawScale(unit);
    shapes.track.setAttribute("points", vehicle.track.map((place) => text(point(place))).join(" "));
    shapes.trail.setAttribute("d", trail.map(({ place, jump }) => `${jump ? "M" : "L"}${text(point(place))}`).join(""));
    const [x, y] = point([vehicle.latitude, vehicle.longitude]);
    shapes.vehicle.setAttribute("transform", `translate(${x.toFixed(1)} ${y.toFixed(1)})`);
    shapes.vehicle.lastChild.setAttribute("transform", `rotate(${vehicle.courseDegrees.toFixed(1)})`);
    shapes.vehicle.classList.toggle("wrong", vehicle.error !== null);
    shapes.pin.setAttribute("visibility", pin ? "visible" : "hidden");
    if (pin) {
        shapes.pin.setAttribute("transform", `translate(${text(point(pin))})`);
    }
}

function metresBetween([latitude, longitude], [latitude2, longitude2]) {
    return metresPerDegree * Math.hypot(latitude2 - latitude,
        (longitude2 - longitude) * Math.cos((latitude * Math.PI) / 180));
}

function addToTrail(elapsed) {
    const place = [vehicle.latitude, vehicle.longitude];
    const last = trail.at(-1);
    if (last && elapsed < last.at) {
        trail.length = 0; // another run of the simulator
    }
    const way = last ? metresBetween(last.place, place) : 0;
    if (last && way < 0.05) {
        return;
    }
    const expected = last ? vehicle.speedMetresPerSecond * (elapsed - last.at + 2 * vehicle.fixIntervalSeconds) : 0;
    trail.push({ place, at: elapsed, jump: trail.length === 0 || way > expected + 8 * vehicle.noiseMetres + 5 });
    if (trail.length > longestTrail) {
        trail.shift();
        trail[0].jump = true;
    }
}

/** Shows the whole track with the vehicle. */
function fit() {
    const places = [...vehicle.track, [vehicle.latitude, vehicle.longitude]];
    const ends = (index) => [Math.min(...places.map((p) => p[index])), Math.max(...places.map((p) => p[index]))];
    const [south, north] = ends(0);
    const [west, east] = ends(1);
    [view.latitude, view.longitude] = [(south + north) / 2, (west + east) / 2];
    const height = (north - south) * metresPerDegree;
    const width = (east - west) * metresPerDegree * shrink();
    const side = Math.min(size.width, size.height);
    view.metres = Math.min(most, Math.max(200, 1.35 * Math.max((height * side) / size.height, (width * side) / size.width)));
    setFollows(false);
}

function setFollows(follows) {
    view.follows = follows;
    $("map-follow").setAttribute("aria-pressed", String(follows));
}

function zoom(factor) {
    view.metres = Math.min(most, Math.max(least, view.metres * factor));
    draw();
}

function pan(x, y) {
    setFollows(false);
    [view.latitude, view.longitude] = placeAt(size.width / 2 + x, size.height / 2 + y);
    draw();
}

const redrawTrack = whenChanged(() => {
    if (!view.follows) {
        fit();
    }
});

/** Takes the news of the simulator. */
export function showOnMap(state) {
    vehicle = state.vehicle;
    if (vehicle.error === null) {
        addToTrail(state.clock.elapsedSeconds);
    }
    redrawTrack(vehicle.track);
    draw();
}

export function setPin(place) {
    pin = place;
    draw();
}

function startPointer(chart) {
    let from = null;
    let moved = false;
    chart.addEventListener("pointerdown", (event) => {
        from = [event.clientX, event.clientY];
        moved = false;
    });
    chart.addEventListener("pointermove", (event) => {
        if (!from || event.buttons === 0) {
            return;
        }
        const way = [from[0] - event.clientX, from[1] - event.clientY];
        if (moved || Math.hypot(...way) > 4) {
            if (!moved) {
                chart.setPointerCapture(event.pointerId);
            }
            moved = true;
            from = [event.clientX, event.clientY];
            pan(...way);
        }
    });
    chart.addEventListener("pointerup", (event) => {
        if (from && !moved && vehicle) {
            const frame = chart.getBoundingClientRect();
            setPin(placeAt(event.clientX - frame.left, event.clientY - frame.top));
            picked(pin);
        }
        from = null;
    });
    chart.addEventListener("wheel", (event) => {
        event.preventDefault();
        zoom(event.deltaY > 0 ? 1.2 : 1 / 1.2);
    }, { passive: false });
}

const keys = {
    ArrowUp: () => pan(0, -40), ArrowDown: () => pan(0, 40), ArrowLeft: () => pan(-40, 0), ArrowRight: () => pan(40, 0),
    "+": () => zoom(1 / 1.5), "=": () => zoom(1 / 1.5), "-": () => zoom(1.5),
};

function button(label, text, action, props) {
    const node = h("button", { type: "button", "aria-label": label, title: label, ...props }, text);
    node.addEventListener("click", () => {
        if (vehicle) {
            action();
            draw();
        }
    });
    return node;
}

/** `onPick` is given a latitude and a longitude when somebody clicks on the map. */
export function startMap(onPick) {
    picked = onPick;
    const chart = svg("svg", { class: "chart", role: "img", tabindex: "0",
        "aria-label": "Map of the vehicle, its track and its trail. Arrow keys move it, plus and minus zoom." },
    shapes.grid, shapes.track, shapes.trail, shapes.pin, shapes.vehicle, shapes.north, shapes.scale);
    $("map").append(chart, h("div", { class: "map-buttons" },
        button("Zoom in", "+", () => zoom(1 / 1.5)), button("Zoom out", "−", () => zoom(1.5)),
        button("Show the whole track", "⤢", fit),
        button("Follow the vehicle", "◎", () => setFollows(!view.follows), { id: "map-follow", "aria-pressed": "false" })));
    setFollows(false);
    startPointer(chart);
    chart.addEventListener("keydown", (event) => {
        if (keys[event.key] && !event.ctrlKey && !event.metaKey) {
            event.preventDefault();
            event.stopPropagation();
            keys[event.key]();
        }
    });
    new ResizeObserver(() => {
        const { width, height } = chart.getBoundingClientRect();
        if (width > 0 && height > 0) {
            const first = !view.fitted;
            [size.width, size.height] = [width, height];
            view.fitted = true;
            chart.setAttribute("viewBox", `0 0 ${width} ${height}`);
            if (first && vehicle) {
                fit();
            }
            draw();
        }
    }).observe(chart);
}
