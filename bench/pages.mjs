// Measures the pages of a report with long tables. bench/measure-pages runs this.

import { execFileSync, spawn } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";

const source = process.env.ORVO_SOURCE;
const { chromium } = createRequire(join(source, "tests/browser/"))("playwright-core");
const rows = Number(process.env.ORVO_ROWS);
const environment = { ...process.env, LC_ALL: "C.UTF-8", TZ: "UTC" };

// --- a report with as many rows as are asked for ---

// The rows of a document again and again, each time with other addresses and numbers.
function multiply(folder, file, element, from = "") {
  const path = join(folder, file);
  const text = readFileSync(path, "utf8");
  const start = text.indexOf(`<${element}>`, text.indexOf(from));
  const end = text.indexOf(`</${element}>`, start) + element.length + 3;
  const row = text.slice(start, end);
  const address = (i, at) => `10.${(i >> 16) & 255}.${(i >> 8) & 255}.${(i + at) & 255}`;
  const wordOf = (i) => row
    .replace(/(?<=>|Value=")\d+\.\d+\.\d+\.\d+/g, (_, at) => address(i, at))
    .replace(/(?<=>|Value=")[1-9]\d*(?=[<"])/g, (digits, at) => String((Number(digits) * (i * 7919 + at)) % 99999989));
  const words = Array.from({ length: rows }, (_, i) => wordOf(i));
  writeFileSync(path, [text.slice(0, start), ...words, text.slice(end)].join(""));
}

function makeReport(folder) {
  const capture = join(source, "samples", "office.pcapng");
  const words = ["make", capture, "--out", folder, "--format", "xml", "--no-names"];
  execFileSync(process.env.ORVO_REPORT, words, { env: environment, stdio: "ignore" });
  multiply(folder, "StatsReport.xml", "NodeStat", '<Type Name="IP">');
  multiply(folder, "StatsReport.xml", "Stats", "<FlowStatistics");
}

// --- one view ---

// Runs in the page before its own script: notes when rows show, and offers the steps that are measured.
function prepare() {
  const look = () => {
    if (document.querySelector("table.grid.ready tbody td")) window.shownAt = performance.now();
    else requestAnimationFrame(look);
  };
  requestAnimationFrame(look);

  // The frame of the longest table, and what stands in it.
  const length = (frame) => Number(frame.querySelector("table").getAttribute("aria-rowcount"));
  const frame = () => [...document.querySelectorAll(".frame")].sort((a, b) => length(b) - length(a))[0];
  const part = (name) => frame().querySelector(name);
  const count = () => part(".row-count").textContent;
  const sort = (at) => {
    const head = frame().querySelectorAll("thead th")[at];
    head.removeAttribute("aria-sort");
    head.querySelector("button").click();
    return () => head.hasAttribute("aria-sort");
  };
  const filter = (text) => {
    const before = count();
    part(".filter").value = text;
    part(".filter").dispatchEvent(new Event("input"));
    return () => count() !== before && count().endsWith("rows");
  };
  const scroll = () => {
    const scroller = part(".scroller");
    const step = () => {
      scroller.scrollTop += 900;
      requestAnimationFrame(step);
    };
    step();
    return (time) => time > 2000;
  };
  // Each begins something and gives what tells whether it is over.
  window.steps = {
    "sort by a number": () => sort(3),
    "sort by the first column": () => sort(0),
    "filter: one digit": () => filter("7"),
    "filter: two words": () => filter("7 10.0.1"),
    "filter: none": () => filter(""),
    "scroll for two seconds": scroll,
  };
  // The time that a step takes, and the longest that the page did not answer.
  window.measure = (name) => new Promise((resolve) => {
    const start = performance.now();
    const isOver = window.steps[name]();
    let last = start;
    let pause = 0;
    const look = () => {
      const now = performance.now();
      pause = Math.max(pause, now - last);
      last = now;
      if (isOver(now - start)) resolve({ time: now - start, pause });
      else requestAnimationFrame(look);
    };
    requestAnimationFrame(look);
  });
}

const STEPS = ["sort by a number", "sort by the first column", "filter: one digit", "filter: two words", "filter: none",
  "scroll for two seconds"];

const show = (what, text) => console.log(`  ${what.padEnd(26)} ${text}`);
const seconds = (milliseconds) => `${(milliseconds / 1000).toFixed(2)} s`.padStart(9);

async function measureView(browser, address, name, steps) {
  const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
  page.setDefaultTimeout(120_000);
  await page.addInitScript(prepare);
  await page.goto(address + name);
  const shownAt = await (await page.waitForFunction(() => window.shownAt)).jsonValue();
  console.log(name);
  show("rows show", seconds(shownAt));
  await page.waitForTimeout(1000); // a table that sorts itself first
  for (const step of steps) {
    const { time, pause } = await page.evaluate((wanted) => window.measure(wanted), step);
    show(step, `${seconds(time)}, longest pause ${seconds(pause)}`);
  }
  const session = await page.context().newCDPSession(page);
  await session.send("Performance.enable");
  const { metrics } = await session.send("Performance.getMetrics");
  const metric = (wanted) => metrics.find((known) => known.name === wanted).value;
  show("memory of scripts", `${(metric("JSHeapTotalSize") / 2 ** 20).toFixed(0).padStart(7)} MiB`);
  show("nodes of the browser", String(metric("Nodes")).padStart(7));
  await page.close();
}

const folder = mkdtempSync(join(tmpdir(), "orvo-pages-"));
try {
  makeReport(folder);
  const stdio = ["ignore", "pipe", "inherit"];
  const viewer = spawn(process.env.ORVO_REPORT, ["view", folder], { env: environment, stdio });
  const address = await new Promise((resolve) => viewer.stdout.once("data", (text) => resolve(String(text).trim())));
  const browser = await chromium.launch({
    executablePath: process.env.CHROMIUM,
    args: process.getuid() === 0 ? ["--no-sandbox"] : [],
  });
  try {
    await measureView(browser, address, "Report.htm", []);
    await measureView(browser, address, "Nodes.htm", STEPS);
    await measureView(browser, address, "Expert.htm#ExpertFlowStats", STEPS);
  } finally {
    await browser.close();
    viewer.kill("SIGTERM");
  }
} finally {
  rmSync(folder, { recursive: true, force: true });
}
