// The traffic: filtered, paused, opened, exported.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { expectTexts, pageTest } from "./support.mjs";

const operations = ".exchange-row .x-op";

async function someTraffic(simulator) {
    await simulator.ask("pwr&id=P1&cmd=on");
    await simulator.ask("off&id=P2");
    await simulator.ask("script&id=P1&cmd=df%20-h");
    await simulator.ask("nothing&id=P2");
    await simulator.post("faults", { fault: "status-404" });
    await simulator.ask("off&id=P1");
}

pageTest("the traffic is filtered", { prepare: someTraffic }, async (page) => {
    await expectTexts(page, operations, ["off", "nothing", "script", "off", "pwr"]);
    const filter = page.locator("#filter");
    await filter.getByLabel("Text").fill("df -h");
    await expectTexts(page, operations, ["script"]);
    await expectTexts(page, "#traffic-count", ["1 of 5"]);
    await filter.getByLabel("Text").fill("no such text");
    await page.getByText("No exchange fits the filter.").waitFor();
    await filter.getByRole("button", { name: "Show all" }).click();
    await expectTexts(page, operations, ["off", "nothing", "script", "off", "pwr"]);
    await filter.getByLabel("Operation").selectOption("off");
    await expectTexts(page, operations, ["off", "off"]);
    await filter.getByLabel("Payload").selectOption("P2");
    await expectTexts(page, ".exchange-row .x-id", ["P2"]);
    await filter.getByLabel("Operation").selectOption("");
    await filter.getByLabel("Status").selectOption("refused");
    await expectTexts(page, operations, ["nothing"]);
    await filter.getByRole("button", { name: "Show all" }).click();
    await filter.getByLabel("Faults").check();
    await expectTexts(page, ".exchange-row .marks", ["status-404"]);
});

pageTest("the traffic is paused, and goes on", { prepare: someTraffic }, async (page, simulator) => {
    await expectTexts(page, "#traffic-count", ["5"]);
    await page.getByRole("button", { name: "Pause" }).click();
    await simulator.ask("pwr&id=P1&cmd=off");
    await page.getByRole("button", { name: "Resume (1 new)" }).waitFor();
    await expectTexts(page, "#traffic-count", ["5"]);
    await page.getByRole("button", { name: "Resume" }).click();
    await expectTexts(page, operations, ["pwr", "off", "nothing", "script", "off", "pwr"]);
    await page.getByRole("button", { name: "Clear" }).click();
    await page.getByText("No traffic yet").waitFor();
    assert.deepEqual((await simulator.get("traffic")).exchanges, []);
});

pageTest("an exchange shows its exact bytes, as text and in hexadecimal", {}, async (page, simulator) => {
    const request = `GET /xp?op=off&id=P1 HTTP/1.1\r\nHost: 127.0.0.1:${simulator.port}\r\nAccept: */*\r\n\r\n`;
    const reply = await simulator.talk(request);
    assert.match(reply, /^HTTP\/1\.1 200 OK\r\n/);
    await page.locator(".exchange-row").click();
    const shown = (text) => text.replaceAll("\r", "\\r").replaceAll("\n", "\\n\n");
    await expectTexts(page, ".bodies .bytes", [shown(request), shown(reply)]);
    const box = page.locator(".bytes-box").first();
    await box.getByRole("button", { name: "Hex" }).click();
    await page.locator(".bytes.hex").waitFor();
    const rows = (await page.locator(".bytes.hex").textContent()).split("\n");
    const columns = rows.map((row) => row.slice(8, 57)).join(" ").trim().split(/ +/);
    assert.equal(Buffer.from(columns.join(""), "hex").toString("latin1"), request);
    await page.locator(".exchange-row").click();
    await expectTexts(page, ".bodies .bytes", []);
});

pageTest("a poll is seen while it is held", {}, async (page, simulator) => {
    const poll = simulator.ask("poll&id=P1&format=2&timeout=600000");
    await expectTexts(page, ".exchange-row > .chip", ["under way"]);
    await expectTexts(page, "#detail-state .chip", ["polling"]);
    await simulator.post("commands", { id: "P1", command: "c" });
    await poll;
    await expectTexts(page, ".exchange-row > .chip", ["200 OK"]);
});

pageTest("what a client does wrong is flagged", {}, async (page, simulator) => {
    await simulator.talk("SSH-2.0-client\r\n\r\n");
    await expectTexts(page, ".mark.flag", ["not an HTTP request"]);
    await simulator.talk("GET /xp?op=off&id=P1 HTTP/1.1\r\nHost: x\r\nAccept: */*\r\nCookie: a\r\nConnection: close\r\n\r\n");
    await expectTexts(page, ".mark.flag", ["2 flags", "not an HTTP request"]);
    await page.locator(".exchange-row").first().click();
    await page.getByText("header 'Cookie' is not sent by the client").waitFor();
    await simulator.ask("off&id=P1");
    await expectTexts(page, "#traffic-count", ["3"]);
    await page.locator("#filter").getByLabel("Flags").check();
    await expectTexts(page, "#traffic-count", ["2 of 3"]);
});

pageTest("the journal is exported whole", { prepare: someTraffic }, async (page, simulator) => {
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("link", { name: "Export" }).click()]);
    assert.equal(download.suggestedFilename(), "journal.jsonl");
    const journal = readFileSync(await download.path(), "utf8");
    assert.equal(journal, await (await fetch(`${simulator.address}/sim/v1/journal`)).text());
    const lines = journal.trimEnd().split("\n").map((line) => JSON.parse(line));
    assert.deepEqual(lines.map(({ operation }) => operation), ["pwr", "off", "script", "nothing", "off"]);
});
