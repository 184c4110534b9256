// What the simulator tells, as it tells it: its state, and the exchanges of its payloads.

import { get } from "./api.js";

const mostExchanges = 5000;
const retryMilliseconds = 1500;
const listeners = { state: [], traffic: [], link: [] };

/** The newest state, the exchanges by their numbers, and whether the simulator is heard. */
export const feed = { state: null, exchanges: new Map(), linked: false };

/** `kind` is "state", "traffic" or "link"; `listener` is called without arguments. */
export function on(kind, listener) {
    listeners[kind].push(listener);
}

function tell(kind) {
    for (const listener of listeners[kind]) {
        listener();
    }
}

function add(exchange) {
    feed.exchanges.set(exchange.number, exchange);
    if (feed.exchanges.size > mostExchanges) {
        feed.exchanges.delete(feed.exchanges.keys().next().value);
    }
}

export function forgetExchanges() {
    for (const [number, exchange] of feed.exchanges) {
        if (!exchange.open) {
            feed.exchanges.delete(number);
        }
    }
    tell("traffic");
}

/** The simulator may be another one than before, so all is asked for. */
async function catchUp() {
    const heard = new Map(feed.exchanges);
    try {
        const { exchanges } = await get(`traffic?most=${mostExchanges}`);
        const since = [...feed.exchanges].filter(([number, exchange]) => heard.get(number) !== exchange);
        feed.exchanges.clear();
        exchanges.forEach(add);
        since.forEach(([, exchange]) => add(exchange));
        tell("traffic");
    } catch {
        // The link is down again, which is shown.
    }
}

function setLinked(linked) {
    if (feed.linked !== linked) {
        feed.linked = linked;
        tell("link");
    }
}

export function listen() {
    const events = new EventSource("/sim/v1/events");
    events.addEventListener("open", () => {
        setLinked(true);
        catchUp();
    });
    events.addEventListener("state", (event) => {
        feed.state = JSON.parse(event.data);
        tell("state");
    });
    events.addEventListener("traffic", (event) => {
        add(JSON.parse(event.data));
        tell("traffic");
    });
    events.addEventListener("error", () => {
        setLinked(false);
        events.close();
        setTimeout(listen, retryMilliseconds);
    });
}
