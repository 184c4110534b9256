// What a person does with the page, from the first command to the export of the journal.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { expectTexts, pageTest, registration } from "./support.mjs";

async function saved(page, click) {
    const [download] = await Promise.all([page.waitForEvent("download"), click()]);
    return [download.suggestedFilename(), readFileSync(await download.path())];
}

pageTest("an empty simulator tells what to do next", {}, async (page, simulator) => {
    const line = `curl -d '{"id":"P1","command":"status"}' \\\n  ${simulator.address}/sim/v1/commands`;
    await page.locator("#payload-none pre", { hasText: line }).waitFor();
    await page.getByText("No traffic yet").waitFor();
    await page.getByLabel("Identifier").fill("P1");
    await page.getByRole("button", { name: "Queue “status”" }).click();
    await expectTexts(page, ".payload-id", ["P1"]);
    await expectTexts(page, ".command-text", ["status"]);
    assert.equal((await simulator.get("state")).payloads[0].commands[0].tag, "t1");
});

pageTest("a command is queued, delivered and answered before one's eyes", { prepare: (s) => s.register("P1", registration) },
    async (page, simulator) => {
        const form = page.locator("#command-form");
        await page.waitForFunction(() => document.querySelector("[name=tag]").value === "t1");
        await form.getByLabel("Command", { exact: true }).fill("status now");
        await form.getByRole("button", { name: "Queue" }).click();
        await expectTexts(page, ".command .chip:not([hidden])", ["queued"]);
        const poll = JSON.parse(await simulator.ask("poll&id=P1&format=2&timeout=0"));
        assert.deepEqual(poll.commands, [{ id: "P1", command: "'t1'status now" }]);
        await expectTexts(page, ".command .chip:not([hidden])", ["delivered"]);
        await simulator.answer("P1", "t1", "half way", "&complete=false");
        await expectTexts(page, ".answer pre", ["half way"]);
        await simulator.answer("P1", "t1", "all is well: 21 °C");
        await expectTexts(page, ".answer pre", ["half way", "all is well: 21 °C"]);
        await expectTexts(page, ".command .chip:not([hidden])", ["succeeded"]);
        await expectTexts(page, "#spoken p", ["queued", "delivered", "succeeded"].map((word) => `Command t1 for P1: ${word}`));

        await form.getByText("File", { exact: true }).click();
        await form.getByLabel("Command", { exact: true }).fill("/tmp/settings");
        await form.getByLabel("Tag").fill("mine");
        await form.getByRole("button", { name: "Queue" }).click();
        await expectTexts(page, ".tag-text", ["mine", "t1"]);
        assert.equal(JSON.parse(await simulator.ask("poll&id=P1&format=2&timeout=0")).commands[0].command, "file:'mine'/tmp/settings");
        await simulator.answer("P1", "mine", "no such file", "&succeeded=false");
        await expectTexts(page, ".command > .command-line > .chip:last-child", ["failed", "succeeded"]);
    });

pageTest("a refused command is told", {
    prepare: (s) => s.post("commands", { id: "P1", command: "c" }),
    allowed: /\/sim\/v1\/commands Failed to load resource: the server responded with a status of 400/,
}, async (page) => {
    await page.locator("#command-form").getByLabel("Command", { exact: true }).fill("x");
    await page.locator("#command-form").getByLabel("Tag").fill("'\"");
    await page.getByRole("button", { name: "Queue" }).click();
    await expectTexts(page, ".notice span", ["The tag contains both kinds of quotes"]);
    await page.locator(".notice").getByRole("button", { name: "Close" }).click();
    await expectTexts(page, ".notice", []);
});

pageTest("a registration is shown as tables", { prepare: (s) => s.register("P1", registration) }, async (page) => {
    await page.getByRole("tab", { name: "Registration" }).click();
    await expectTexts(page, ".members tr:first-child > *", ["tag", "ctd"]);
    await expectTexts(page, "[aria-label=Interface] td", ["IF-2040", "3.1.0"]);
    await expectTexts(page, "[aria-label=Hardware] th", ["manufacturer", "model", "pn", "serial", "connector", "power"]);
    await expectTexts(page, "[aria-label=Hardware] td", ["Halden Instruments", "Sonde 7", "HI-S7-01", "000417", "J3", "12",
        "Halden Instruments", "Pump 2", "", "", "J4", "24"]);
});

pageTest("switches are turned and a shutdown is planned, counted down and cancelled",
    { simulator: ["--speed", "0"], prepare: (s) => s.ask("pwr&id=P1&cmd=on&sw=S%202") }, async (page, simulator) => {
        await page.getByRole("tab", { name: "Power" }).click();
        await expectTexts(page, ".switch-list li", ["Main switchnot set yet", "S 2on"]);
        await page.getByRole("switch", { name: "S 2" }).click();
        await page.getByRole("switch", { name: "Main switch" }).click();
        await expectTexts(page, ".switch-list li", ["Main switchon", "S 2off"]);
        await page.getByLabel("Another switch").fill("pump");
        await page.getByRole("button", { name: "Turn on" }).click();
        await expectTexts(page, ".switch-list li", ["Main switchon", "S 2off", "pumpon"]);
        await page.getByLabel("In seconds").fill("90");
        await page.getByRole("button", { name: "Plan shutdown" }).click();
        await expectTexts(page, ".shutdown", ["Planned in 1 min 30 s. The payload may postpone it."]);
        await page.getByRole("tab", { name: "Clock" }).click();
        await page.getByRole("button", { name: "Step 1 min ahead" }).click();
        await expectTexts(page, ".shutdown", ["Planned in 30 s. The payload may postpone it."]);
        await page.getByRole("button", { name: "Cancel it" }).click();
        await expectTexts(page, ".shutdown", ["No shutdown is planned."]);
        await page.getByRole("button", { name: "Plan shutdown" }).click();
        await page.getByRole("button", { name: "Step 10 min ahead" }).click();
        await expectTexts(page, ".shutdown", ["Due: the next poll that asks for it is told."]);
        assert.equal(await simulator.ask("poll&id=P1&format=2&shutdown=true&maxcommands=0&timeout=0"), '{"shutdown":true}\n');
        await expectTexts(page, ".shutdown", ["The payload was told, and is to turn itself off."]);
        await simulator.ask("off&id=P1");
        await expectTexts(page, "#detail-state .chip", ["off"]);
        await page.getByRole("button", { name: "Forget" }).click();
        await expectTexts(page, ".payload-id", []);
    });

pageTest("the vehicle goes where it is told", { simulator: ["--speed", "0"] }, async (page, simulator) => {
    await page.getByLabel("Latitude", { exact: true }).fill("57.5");
    await page.getByLabel("Longitude", { exact: true }).fill("-2.25");
    await page.getByRole("button", { name: "Go there" }).click();
    await expectTexts(page, "#vehicle-place", ["57° 30.000′ N  2° 15.000′ W"]);
    await page.getByLabel("Position error", { exact: true }).fill("no satellites");
    await page.getByRole("button", { name: "Report it" }).click();
    await expectTexts(page, "#vehicle-facts > :last-child dd", ["“no satellites”"]);
    await page.getByRole("button", { name: "End it" }).click();
    await expectTexts(page, "#vehicle-facts > :last-child dd", ["every 1 s"]);
    await page.getByRole("tab", { name: "Motion" }).click();
    await page.getByLabel("Speed, m/s").fill("7.5");
    await page.getByLabel("Noise, m").fill("3");
    await page.locator("#motion-form").getByRole("button", { name: "Set" }).click();
    const course = page.locator("#vehicle-facts dd").first();
    await expectTexts(page, "#vehicle-facts dd", [await course.textContent(), "7.5 m/s", "3 m", "every 1 s"]);
    await page.getByRole("tab", { name: "Clock" }).click();
    await page.getByRole("button", { name: "×60", exact: true }).click();
    await expectTexts(page, "#clock-speed", ["×60"]);
    assert.equal((await simulator.get("state")).clock.speed, 60);
    await page.getByRole("tab", { name: "Position" }).click();
    await page.locator(".chart").click({ position: { x: 200, y: 60 } });
    const picked = Number(await page.getByLabel("Latitude", { exact: true }).inputValue());
    assert.ok(Math.abs(picked - 57.5) < 0.1 && picked !== 57.5, `${picked}`);
});

pageTest("a fault is armed, strikes, and is seen in the traffic", {}, async (page, simulator) => {
    await page.getByLabel("Search the faults").fill("status-404");
    await page.getByLabel("Operation to break").selectOption("off");
    await page.getByLabel("How many replies, or what chance").fill("2");
    await page.getByRole("button", { name: "Arm status-404", exact: true }).click();
    await expectTexts(page, ".armed .item-text", ["status-404the next 2 replies to off"]);
    await simulator.ask("pwr&id=P1&cmd=on");
    await simulator.ask("off&id=P1");
    await expectTexts(page, ".armed .item-text", ["status-404the next reply to off · struck 1 time"]);
    await expectTexts(page, ".exchange-row .x-op", ["off", "pwr"]);
    await expectTexts(page, ".exchange-row .marks", ["status-404", ""]);
    await page.getByRole("button", { name: "Disarm status-404" }).click();
    await expectTexts(page, ".armed", []);
    await page.getByLabel("How often").selectOption("probability");
    await page.getByRole("button", { name: "Arm status-404", exact: true }).click();
    await expectTexts(page, ".armed .item-text", ["status-40410 % of replies to off"]);
    const [armed] = (await simulator.get("faults")).armed;
    assert.deepEqual([armed.probability, armed.count], [0.1, null]);
});

pageTest("scripts are answered by their rule", {}, async (page, simulator) => {
    await page.getByRole("tab", { name: "Scripts" }).click();
    await page.getByLabel("Command matches").fill("df *");
    await page.getByLabel("Answer").fill("{command} is full\n");
    await page.getByRole("button", { name: "Add rule" }).click();
    await expectTexts(page, ".script-list code", ["df *"]);
    assert.equal(await simulator.ask("script&id=P1&cmd=df%20-h"), "df -h is full\n");
    await page.getByRole("tab", { name: "Received" }).click();
    await expectTexts(page, "#tab-received code", ["$ df -h"]);
    await expectTexts(page, "#tab-received pre", ["df -h is full\n"]);
});

const bytes = Uint8Array.from({ length: 20001 }, (_, index) => (index * 7 + (index >> 8)) & 255);

pageTest("files and packets are looked at and downloaded", {
    prepare: async (s) => {
        await s.ask("upload&id=P1&remote=survey%2Fone.bin", bytes, "survey.bin");
        await s.ask("rawpacket&id=P1", "\\x00\\xFFa\\\\b\0");
    },
}, async (page) => {
    await page.getByRole("tab", { name: "Received" }).click();
    const [name, file] = await saved(page, () => page.getByRole("link", { name: "Download survey_one.bin" }).click());
    assert.equal(name, "survey_one.bin");
    assert.deepEqual(file, Buffer.from(bytes));
    const packet = page.locator("#tab-received .item", { hasText: "Packet" });
    const [, content] = await saved(page, () => packet.getByRole("link").click());
    assert.deepEqual(content, Buffer.from([0, 255, 97, 92, 98]));
    await packet.getByRole("button").click();
    const dialog = page.getByRole("dialog");
    await expectTexts(page, "dialog .bytes", ["\\0\\xFFa\\b"]);
    await dialog.getByRole("button", { name: "Hex" }).click();
    await expectTexts(page, "dialog .bytes", [`000000  ${"00 FF 61 5C 62".padEnd(48)}  ··a\\b`]);
    await dialog.getByRole("button", { name: "Close" }).click();
    await page.getByRole("button", { name: "Look at survey_one.bin" }).click();
    await dialog.getByText("The first 16 kB are shown. Show more").click();
    await dialog.getByText("Show more").waitFor({ state: "detached" });
});

