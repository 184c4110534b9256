// The page with the keyboard alone, on small screens, in the dark, with many payloads, without a server.

import assert from "node:assert/strict";
import { createServer, connect } from "node:net";
import { lowContrast } from "./contrast.mjs";
import { expectTexts, pageTest, registration, shoot } from "./support.mjs";

pageTest("everything is done with the keyboard alone", { prepare: (s) => s.register("P1", registration) }, async (page, simulator) => {
    const keys = page.keyboard;
    const focused = () => page.evaluate(() => document.activeElement.getAttribute("name") ?? document.activeElement.textContent);
    await expectTexts(page, ".payload-id", ["P1"]);
    await keys.press("c");
    await keys.type("status");
    await keys.press("Enter");
    await expectTexts(page, ".command-text", ["status"]);
    await keys.press("Escape");
    await keys.press("?");
    await page.getByRole("dialog", { name: "Keyboard shortcuts" }).waitFor();
    await keys.press("Escape");
    await keys.press("w");
    await keys.press("Space");
    await expectTexts(page, ".switch-list li", ["Main switchon"]);
    await keys.press("b");
    assert.equal(await focused(), "search");
    await keys.type("status-404");
    for (const next of ["operation", "mode", "amount"]) {
        await keys.press("Tab");
        assert.equal(await focused(), next);
    }
    await keys.press("Tab");
    await keys.press("Tab");
    assert.equal(await focused(), "Arm");
    await keys.press("Enter");
    await expectTexts(page, ".armed .mono", ["status-404"]);
    await simulator.ask("off&id=P2");
    await simulator.ask("pwr&id=P2&cmd=on");
    await expectTexts(page, ".exchange-row .x-op", ["pwr", "off", "metadone", "meta"]);
    await expectTexts(page, ".exchange-row .mark", ["status-404"]);
    await keys.press("x");
    await keys.press("ArrowDown");
    await keys.press("ArrowUp");
    await keys.press("Enter");
    await page.locator(".bodies .bytes").first().waitFor();
    await keys.press("p");
    await page.getByRole("button", { name: "Resume" }).waitFor();
    await keys.press("f");
    await keys.type("metadone");
    await expectTexts(page, ".exchange-row .x-op", ["metadone"]);
    await keys.press("Escape");
    await expectTexts(page, ".payload-id", ["P1", "P2"]);
    await keys.press("j");
    await expectTexts(page, "#detail-title", ["P2"]);
    await keys.press("k");
    await expectTexts(page, "#detail-title", ["P1"]);
    await keys.press("/");
    await keys.type("p2");
    await keys.press("Enter");
    await expectTexts(page, "#detail-title", ["P2"]);
    await keys.press("Escape");
    await keys.press("m");
    const before = await page.locator(".map-scale path").getAttribute("d");
    await keys.press("+");
    assert.notEqual(await page.locator(".map-scale path").getAttribute("d"), before);
    await keys.press("t");
    assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), "light");
});

pageTest("two hundred payloads stay quick", {
    prepare: async (s) => {
        for (let index = 0; index < 200; ++index) {
            await s.register(`payload-${index}`, registration);
            await s.post("commands", { id: `payload-${index}`, command: "status" });
        }
    },
}, async (page, simulator, t) => {
    await expectTexts(page, "#payload-count", ["200"]);
    await page.getByLabel("Search payloads").fill("payload-1");
    assert.deepEqual((await page.locator(".payload-id").allTextContents()).slice(0, 3), ["payload-1", "payload-10", "payload-11"]);
    const milliseconds = await page.evaluate(() => {
        const begin = performance.now();
        const search = document.getElementById("payload-search");
        search.value = "payload-177";
        search.dispatchEvent(new Event("input"));
        document.getElementById("payload-list").getBoundingClientRect();
        return performance.now() - begin;
    });
    t.diagnostic(`a search among 200 payloads took ${milliseconds.toFixed(1)} ms`);
    await expectTexts(page, ".payload-id", ["payload-177"]);
    assert.ok(milliseconds < 1000, `${milliseconds}`);
    await page.getByLabel("Search payloads").fill("");
    await shoot(page, "many");
});

pageTest("neither a broken address nor a hostile identifier does harm", {
    hash: "#%", prepare: (s) => s.ask("off&id=%27%24%28touch%20x%29%3Cb%3E"),
}, async (page, simulator) => {
    await expectTexts(page, "#detail-title", ["'$(touch x)<b>"]);
    const server = simulator.address.slice("http://".length);
    await expectTexts(page, "#tab-registration pre", [`tavo register -s ${server} -i ''\\''$(touch x)<b>' examples/registration.json`]);
});

let cut = false;

/** Stands between the page and the simulator, and can be cut. */
async function wire(simulator, t) {
    const server = createServer((socket) => {
        const onward = connect(simulator.port, "127.0.0.1");
        for (const [from, to] of [[socket, onward], [onward, socket]]) {
            from.pipe(to);
            from.on("error", () => to.destroy());
            from.on("close", () => to.destroy());
        }
        if (cut) {
            socket.destroy();
        }
        wire.sockets.add(socket);
    });
    await new Promise((resolve) => {
        server.listen(0, "127.0.0.1", resolve);
    });
    t.after(() => server.close());
    return `http://127.0.0.1:${server.address().port}`;
}
wire.sockets = new Set();

pageTest("a lost link is shown, and found again", { address: wire, allowed: /\/sim\/v1\/events Failed to load resource: net::ERR_/ },
    async (page, simulator) => {
        cut = true;
        wire.sockets.forEach((socket) => socket.destroy());
        await page.getByText("Reconnecting…").waitFor();
        await simulator.ask("pwr&id=P1&cmd=on");
        cut = false;
        await page.getByText("Live", { exact: true }).waitFor();
        await expectTexts(page, ".payload-id", ["P1"]);
        await expectTexts(page, ".exchange-row .x-op", ["pwr"]);
    });

/** Something of everything. */
async function prepare(s) {
    for (const [id, description] of [["ctd-1", registration.description], ["adcp-1", "Acoustic current profiler"], ["met-1", "Weather station"],
        ["cam-1", "Time-lapse camera"], ["hydro-1", "Hydrophone array"], ["co2-1", "Carbon dioxide sensor"]]) {
        await s.register(id, { ...registration, description });
    }
    await s.post("vehicle", { racetrack: { latitude: 57.5, longitude: 2, lengthMetres: 1600, widthMetres: 600, courseDegrees: 30 },
        speedMetresPerSecond: 3 });
    await s.ask("off&id=cam-1");
    await s.post("commands", { id: "ctd-1", command: "status" });
    await s.post("commands", { id: "ctd-1", command: "/data/settings.txt", isFile: true });
    await s.post("commands", { id: "ctd-1", command: "calibrate depth --at 200" });
    await s.ask("poll&id=ctd-1&format=2&maxcommands=3&timeout=0");
    await s.answer("ctd-1", "t1", "all is well: 3 sensors, 12.1 V");
    await s.answer("ctd-1", "t2", "reading", "&complete=false");
    await s.answer("ctd-1", "t2", "no such file", "&succeeded=false");
    await s.post("commands", { id: "ctd-1", command: "reboot now" });
    await s.ask("upload&id=ctd-1", "survey", "survey.bin");
    await s.ask("rawpacket&id=ctd-1", "\\x00Tavo\0");
    await s.ask("script&id=ctd-1&cmd=df%20-h");
    await s.post("shutdown", { id: "ctd-1", inSeconds: 600 });
    await s.post("shutdown", { id: "met-1", inSeconds: 0 });
    await s.post("faults", { fault: "status-404", operation: "off" });
    await s.ask("off&id=hydro-1");
    await s.ask("nothing&id=adcp-1");
    await s.post("faults", { fault: "no-reply", probability: 0.05 });
}

const sizes = { desk: [1440, 900], wide: [1920, 1080], tablet: [900, 1200], phone: [360, 740] };
const tabs = ["commands", "power", "registration", "received", "motion", "clock", "scripts", "faults", "position"];

async function checkTabs(page, view) {
    for (const tab of tabs) {
        const control = page.locator(`#tab-${tab}-tab`);
        if (await control.isVisible()) {
            await control.click();
            assert.deepEqual(await page.evaluate(lowContrast), [], `${view}, ${tab}`);
            const beyond = await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth);
            assert.ok(beyond <= 0, `${view}, ${tab}: ${beyond} pixels beyond the edge`);
        }
    }
    await page.locator("#tab-commands-tab").evaluate((tab) => tab.click());
}

for (const [name, [width, height]] of Object.entries(sizes)) {
    const phone = name === "phone";
    const browser = { viewport: { width, height }, reducedMotion: "reduce", hasTouch: phone };
    pageTest(`nothing is cut off or faint: ${name}`, { prepare, browser, hash: "#ctd-1" }, async (page) => {
        await page.locator(".exchange-row").nth(2).waitFor({ state: "attached" });
        for (const colorScheme of ["light", "dark"]) {
            await page.emulateMedia({ colorScheme });
            for (const view of phone ? ["traffic", "break", "vehicle", "payloads"] : ["all"]) {
                if (phone) {
                    await page.locator(`.views [data-view=${view}]`).click();
                }
                await shoot(page, `${name}-${colorScheme}${phone ? `-${view}` : ""}`);
                await checkTabs(page, `${colorScheme}, ${view}`);
            }
        }
        if (phone) {
            await page.getByRole("button", { name: "Back to all payloads" }).click();
            await expectTexts(page, "#payload-count", ["6"]);
            await shoot(page, "phone-dark-list");
        }
    });
}
