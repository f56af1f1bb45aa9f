// A second report into the same folder: histories grow, and what the folder had for showing it stays as it was.

import assert from "node:assert/strict";
import { appendFileSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { makeReport, picture, sample, withReport } from "./harness.mjs";
import { buttons, openTab, press, shown } from "./walk.mjs";

const report = () => makeReport("history", sample("ipv6.pcap"));
const entriesOf = (folder, file, entry) => readFileSync(join(folder, file), "utf8").split(`<${entry}`).length - 1;

test("histories grow from report to report", async () => {
  const folder = report();
  await withReport(folder, async (page) => {
    await shown(page);
    await openTab(page, "Nodes");
    assert.ok(!(await buttons(page)).includes("History"), "the first report has nodes, but no history of them");
  });
  appendFileSync(join(folder, "StatsReport.css"), "/* mine */\n");
  for (const reports of [2, 3]) {
    report();
    assert.equal(entriesOf(folder, "SummaryStatistics.xml", "Snapshot "), reports);
    assert.equal(entriesOf(folder, "ProtocolStatistics.xml", "History>"), reports);
    assert.equal(entriesOf(folder, "NodeStatistics.xml", "History>"), reports - 1);
    await withReport(folder, async (page) => {
      await shown(page);
      for (const tab of ["Report", "Nodes", "Protocols"]) {
        await openTab(page, tab);
        await press(page, "History");
        assert.equal(await page.locator("#view .problem").count(), 0);
        await picture(page, `history-${reports}-${tab}`);
      }
    });
  }
  assert.match(readFileSync(join(folder, "StatsReport.css"), "utf8"), /mine/, "assets are not copied again");
});
