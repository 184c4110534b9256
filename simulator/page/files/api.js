// Requests to the simulator. A refusal is shown and thrown.

import { complain } from "./notices.js";

async function ask(method, target, body) {
    const options = { method, cache: "no-store" };
    if (body !== undefined) {
        options.headers = { "Content-Type": "application/json" };
        options.body = JSON.stringify(body);
    }
    let reply;
    try {
        reply = await fetch(`/sim/v1/${target}`, options);
    } catch (failure) {
        complain("The simulator does not answer");
        throw failure;
    }
    if (!reply.ok) {
        const line = (await reply.text()).trim();
        complain(line || `${reply.status} ${reply.statusText}`);
        throw new Error(line);
    }
    return reply;
}

export const get = async (target) => (await ask("GET", target)).json();
export const post = async (target, body) => (await ask("POST", target, body)).json();
export const remove = async (target) => (await ask("DELETE", target)).json();

/** The bytes behind a whole target, but not more than `most`. */
export async function fetchBytes(url, most) {
    const reply = await fetch(url, { cache: "no-store" });
    if (!reply.ok) {
        throw new Error((await reply.text()).trim());
    }
    const reader = reply.body.getReader();
    const bytes = new Uint8Array(most);
    let count = 0;
    for (;;) {
        const { done, value } = await reader.read();
        if (done) {
            return { bytes: bytes.subarray(0, count), more: false };
        }
        const taken = value.subarray(0, most - count);
        bytes.set(taken, count);
        count += taken.length;
        if (taken.length < value.length) {
            await reader.cancel();
            return { bytes, more: true };
        }
    }
}

/** Hands over a form when it is sent; what fails is shown already. */
export function onSubmit(form, send) {
    form.addEventListener("submit", async (event) => {
        event.preventDefault();
        const button = event.submitter ?? form.querySelector("button:not([type])");
        button.disabled = true;
        try {
            await send(new FormData(form), form);
        } catch {
            // The notice says it.
        } finally {
            button.disabled = false;
        }
    });
}

/** Lets a button do something; what fails is shown already. */
export function onClick(button, action) {
    button.addEventListener("click", () => Promise.resolve(action()).catch(() => {}));
    return button;
}
