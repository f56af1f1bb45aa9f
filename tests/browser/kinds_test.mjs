// Every kind of report: the tabs and buttons that it has, and what each of them shows.

import assert from "node:assert/strict";
import { test } from "node:test";
import { assertAccessible, makeReport, picture, sample, withReport } from "./harness.mjs";
import { buttons, openTab, press, shown, tabs } from "./walk.mjs";

const VOICE = ["--set", "OutputVoIPOnly=1"];

// Views by tab and button. One in brackets has figures, but this kind of report brings no style sheet for them, which is
// then one of `lacking`, as are images that it leaves out.
const MAIN = ["Overview", "Snapshots"];
const FULL = {
  Report: [...MAIN, "History", "Graphs"],
  Nodes: ["Overview", "Details", "Hierarchy"],
  Protocols: ["Overview", "History"],
  Expert: ["Summary", "Flows", "Applications", "Event log"],
};
const AGAIN = { ...FULL, Nodes: ["Overview", "History", "Details", "Hierarchy"] };
const REPORTS = [
  { name: "full", capture: "office.pcapng", reports: 2, views: AGAIN },
  { name: "full-voice", capture: "voice-lossy.pcap", options: VOICE, views: { ...FULL, "Voice and video": ["Media"] } },
  {
    name: "full-wireless",
    capture: "wireless.pcap",
    reports: 2,
    views: { ...AGAIN, Wireless: ["Overview", "History", "Channels"] },
  },
  {
    name: "executive-summary",
    capture: "wireless.pcap",
    options: ["--report", "executive-summary"],
    views: {
      Report: [...MAIN, "(Graphs)"],
      Nodes: [""],
      Protocols: ["Overview"],
      Expert: ["Summary", "Flows", "(Applications)", "(Event log)"],
      Wireless: ["Overview", "Channels"],
      Conversations: [""],
    },
    lacking: ["Graphs.xsl", "ExpertApplicationStats.xsl", "ExpertEventLog.xsl"],
  },
  {
    name: "expert-summary",
    capture: "office.pcapng",
    options: ["--report", "expert-summary"],
    views: { Report: [...MAIN, "(Graphs)"], Expert: ["Summary", "Flows", "Applications", "(Event log)"] },
    lacking: ["Graphs.xsl", "ExpertEventLog.xsl", "Images/event_log.gif"],
  },
  {
    name: "additional-node",
    capture: "office.pcapng",
    options: ["--report", "additional-node"],
    views: { Report: MAIN, Nodes: [""], Expert: ["Summary"], Conversations: [""] },
  },
  {
    name: "conversations",
    capture: "office.pcapng",
    options: ["--report", "conversations"],
    views: { Report: MAIN, Conversations: [""] },
  },
];

// Full reports show the same in the same views, so that looking closely once is enough; special kinds are all different.
const looked = new Set();
function isNew(name, tab, label) {
  const view = `${name.startsWith("full") ? "full" : name} ${tab} ${label}`;
  return !looked.has(view) && looked.add(view);
}

// What is shown, by tab and button, looked at on the way.
async function walk(page, name) {
  const views = {};
  await shown(page);
  for (const tab of await tabs(page)) {
    await openTab(page, tab);
    const labels = await buttons(page);
    views[tab] = [];
    for (const label of labels.length ? labels : [""]) {
      if (label) await press(page, label);
      const where = `${name}-${tab}-${label}`.replaceAll(" ", "_");
      await picture(page, where);
      if (isNew(name, tab, label)) await assertAccessible(page, where);
      const hasProblem = (await page.locator("#view .problem").count()) !== 0;
      views[tab].push(hasProblem ? `(${label})` : label);
    }
  }
  return views;
}

for (const { name, capture, options = [], views, reports = 1, lacking = [] } of REPORTS) {
  test(`a report of kind ${name}`, async () => {
    let folder = null;
    for (let i = 0; i < reports; i += 1) folder = makeReport(name, sample(capture), ...options);
    await withReport(folder, async (page) => assert.deepEqual(await walk(page, name), views), { lacking });
  });
}
