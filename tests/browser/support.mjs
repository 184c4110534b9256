// A simulator and a browser for each test, and a watch over what the page must never do.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { connect } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { after, before, test } from "node:test";

const { chromium } = createRequire(`${process.env.TAVO_MODULES}/`)("playwright-core");
const screenshots = process.env.TAVO_SCREENSHOTS;
const watchdog = { timeout: 120000 };
const desk = { width: 1440, height: 900 };

let browser;

before(async () => {
    mkdirSync(screenshots, { recursive: true });
    browser = await chromium.launch({
        executablePath: process.env.TAVO_CHROMIUM,
        args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
            "--disable-component-update", "--disable-sync", "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1"],
    });
});
after(() => browser.close());

/** The program under test, on a port that it chose, with a data folder of its own. */
export class Simulator {
    static async start(...options) {
        const simulator = new Simulator();
        simulator.folder = mkdtempSync(join(tmpdir(), "tavo-browser-"));
        simulator.process = spawn(process.env.TAVO_SIMULATOR,
            ["--port", "0", "--quiet", "--data", join(simulator.folder, "data"), ...options], { stdio: ["ignore", "pipe", "inherit"] });
        const lines = createInterface({ input: simulator.process.stdout });
        const [line] = await new Promise((resolve, reject) => {
            lines.once("line", (...first) => resolve(first));
            simulator.process.once("exit", (code) => reject(new Error(`the simulator ended with ${code}`)));
        });
        simulator.port = Number(/ port (\d+) /.exec(line)[1]);
        simulator.address = `http://127.0.0.1:${simulator.port}`;
        return simulator;
    }

    async stop() {
        const ended = new Promise((resolve) => {
            this.process.once("exit", (code) => resolve(code));
        });
        this.process.kill("SIGTERM");
        assert.equal(await ended, 0);
        rmSync(this.folder, { recursive: true });
    }

    async get(target) {
        return (await fetch(`${this.address}/sim/v1/${target}`)).json();
    }

    async post(target, body) {
        const reply = await fetch(`${this.address}/sim/v1/${target}`, { method: "POST", body: JSON.stringify(body),
            headers: { "Content-Type": "application/json" } });
        assert.equal(reply.status, 200, await reply.clone().text());
        return reply.json();
    }

    /** Sends bytes on a connection of their own and returns all that comes back. */
    talk(...request) {
        return new Promise((resolve, reject) => {
            let reply = "";
            const socket = connect(this.port, "127.0.0.1", () => request.forEach((part) => socket.write(part)));
            socket.on("data", (part) => {
                reply += part.toString("latin1");
                const end = reply.indexOf("\r\n\r\n") + 4;
                const size = /\r\nContent-Length: (\d+)\r\n/.exec(reply.slice(0, end))?.[1];
                if (end > 3 && size !== undefined && reply.length === end + Number(size)) {
                    socket.end();
                }
            });
            socket.on("close", () => resolve(reply));
            socket.on("error", reject);
        });
    }

    /** An operation exactly as a payload asks for it; with content, as it hands that over. Returns the body. */
    async ask(query, content, fileName = "content") {
        const head = `/xp?op=${query} HTTP/1.1\r\nHost: 127.0.0.1:${this.port}\r\nAccept: */*\r\n`;
        let reply;
        if (content === undefined) {
            reply = await this.talk(`GET ${head}\r\n`);
        } else {
            const boundary = "------------------------0a1b2c3d4e5f6071";
            const part = (name, rest) => `--${boundary}\r\nContent-Disposition: form-data; name="${name}"${rest}\r\n`;
            const form = Buffer.concat([
                Buffer.from(`${part("file", `; filename="${fileName}"`)}Content-Type: application/octet-stream\r\n\r\n`),
                Buffer.from(content),
                Buffer.from(`\r\n${part("filename", "")}\r\n/tmp/${fileName}\r\n${part("submit", "")}\r\nsend\r\n--${boundary}--\r\n`)]);
            reply = await this.talk(`POST ${head}Content-Length: ${form.length}\r\n`
                + `Content-Type: multipart/form-data; boundary=${boundary}\r\n\r\n`, form);
        }
        return reply.slice(reply.indexOf("\r\n\r\n") + 4);
    }

    /** A text is handed over with a zero byte at its end. */
    answer(id, tag, text, flags = "") {
        return this.ask(`reply&id=${id}&tag=${tag}${flags}`, `${text}\0`);
    }

    async register(id, document) {
        await this.ask(`meta&id=${id}&hostid=${document.hostID}`, `${JSON.stringify(document).slice(1, -1)}\0`);
        await this.ask(`metadone&id=${id}`);
    }
}

/** Opens the page. It must not complain, nor ask anybody but its server for anything. */
async function open(address, hash, options, allowed) {
    const context = await browser.newContext({ viewport: desk, ...options });
    const page = await context.newPage();
    const faults = [];
    page.on("pageerror", (error) => faults.push(`exception: ${error.message}`));
    page.on("console", (message) => {
        if (["error", "warning"].includes(message.type()) && !allowed?.test(`${message.location().url} ${message.text()}`)) {
            faults.push(`console: ${message.text()} (${message.location().url})`);
        }
    });
    context.on("request", (request) => {
        if (!request.url().startsWith(`${address}/`)) {
            faults.push(`request elsewhere: ${request.url()}`);
        }
    });
    page.setDefaultTimeout(20000);
    await page.goto(`${address}/${hash}`);
    await page.getByText("Live", { exact: true }).waitFor();
    page.close = async () => {
        await context.close();
        assert.deepEqual(faults, []);
    };
    return page;
}

/**
 * A test with a simulator and a page. Options: `prepare(simulator)` runs before the page is opened, `hash`
 * is behind its address, `browser` are options of the browser's context.
 */
export function pageTest(name, options, body) {
    test(name, watchdog, async (t) => {
        const simulator = await Simulator.start(...(options.simulator ?? []));
        try {
            await options.prepare?.(simulator);
            const address = options.address ? await options.address(simulator, t) : simulator.address;
            const page = await open(address, options.hash ?? "", options.browser, options.allowed);
            await body(page, simulator, t);
            await page.close();
        } finally {
            await simulator.stop();
        }
    });
}

export function shoot(page, name) {
    return page.screenshot({ path: join(screenshots, `${name}.png`), animations: "disabled" });
}

/** Waits until the page's elements of this selector have these texts. */
export async function expectTexts(page, selector, texts) {
    try {
        await page.waitForFunction(([where, wanted]) =>
            JSON.stringify([...document.querySelectorAll(where)].map((node) => node.textContent)) === wanted,
        [selector, JSON.stringify(texts)]);
    } catch {
        assert.deepEqual(await page.locator(selector).allTextContents(), texts);
    }
}

export const registration = {
    tag: "ctd", description: "Conductivity, temperature and depth probe", boardAddress: 513, reportingAddress: 514,
    corbaName: "CTDPayload", hostID: "ctd-host-1", enabled: true, interface: [{ pn: "IF-2040", swver: "3.1.0" }],
    hardware: [{ manufacturer: "Halden Instruments", model: "Sonde 7", pn: "HI-S7-01", serial: "000417", power: 12, connector: "J3" },
        { manufacturer: "Halden Instruments", model: "Pump 2", power: 24, connector: "J4" }],
};
