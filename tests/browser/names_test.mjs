// Names as somebody who means no good could send them: shown as the text that they are, and nothing more.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { test } from "node:test";
import { makeReport, picture, place, sample, withReport } from "./harness.mjs";
import { assertSorted, call, calls, column, openTab, press, shown, sortBy, tabs } from "./walk.mjs";

const NAMES = {
  "192.0.2.21": "<script>alert(1)</script>",
  "192.0.2.22": "<img/src=none/onerror=alert(2)>",
  "192.0.2.108": "javascript:alert(3)",
  "192.0.2.1": "\"'><svg/onload=alert(4)>&amp;]]>",
};

async function everyView(page, look) {
  await shown(page);
  for (const tab of await tabs(page)) {
    await openTab(page, tab);
    for (const name of await calls(page)) {
      await call(page, name);
      await look(`${tab}-${name}`);
    }
  }
}

// Nothing of a name has become an element.
async function assertOnlyText(page, where) {
  const made = await page.locator("#view script, #view b[id], #view svg[onload], #view img[src='none'], #view a[href^='javascript']").count();
  assert.equal(made, 0, where);
}

test("names of hosts", async () => {
  writeFileSync(place("hosts"), Object.entries(NAMES).map(([address, name]) => `${address} ${name}\n`).join(""));
  const folder = makeReport("names", sample("office.pcapng"), "--hosts", place("hosts"));
  await withReport(folder, async (page) => {
    await everyView(page, (where) => assertOnlyText(page, where));
    await openTab(page, "Nodes");
    await page.locator("input.filter").first().fill("alert(");
    await picture(page, "names-of-hosts");
    const text = await page.locator("#view").textContent();
    for (const name of Object.values(NAMES)) assert.ok(text.includes(name), `${name} is shown`);
  });
});

test("names of wireless networks", async () => {
  // A name of the sample, exchanged for one of the same length wherever it was sent.
  const capture = readFileSync(sample("wireless.pcap"));
  const old = Buffer.from("office");
  const hostile = Buffer.from("<b id>");
  for (let at = capture.indexOf(old); at >= 0; at = capture.indexOf(old, at)) hostile.copy(capture, at);
  writeFileSync(place("wireless.pcap"), capture);
  await withReport(makeReport("networks", place("wireless.pcap")), async (page) => {
    await everyView(page, (where) => assertOnlyText(page, where));
    await openTab(page, "Wireless");
    await press(page, "Overview");
    assert.ok((await page.locator("#view").textContent()).includes(String(hostile)));
    await picture(page, "names-of-networks");
  });
});

test("sorting and filtering", async () => {
  await withReport(makeReport("tables", sample("office.pcapng"), "--no-names"), async (page) => {
    await shown(page);
    await openTab(page, "Expert");
    await press(page, "Flows");
    await sortBy(page, "Client Port");
    const numbers = (texts) => texts.map((text) => Number(text.replaceAll(/[^0-9.]/g, "")));
    assertSorted(numbers(await column(page, "Client Port")), true);
    await sortBy(page, "Client Port");
    assertSorted(numbers(await column(page, "Client Port")), false);
    const all = await page.locator(".row-count").first().textContent();
    await page.locator("input.filter").first().fill("192.0.2.22");
    await page.locator(".row-count", { hasText: " of " }).first().waitFor();
    const some = await page.locator(".row-count").first().textContent();
    assert.match(some, /^[0-9]+ of [0-9]+ rows$/);
    assert.notEqual(some, all);
    const rows = await page.locator("table.grid").first().locator("tbody tr:has(td)").allTextContents();
    assert.ok(rows.length > 0 && rows.every((row) => row.includes("192.0.2.22") || row.trim() === ""));
    await picture(page, "sorted-and-filtered");
  });
});
