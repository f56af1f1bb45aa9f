// What all tests of whole reports in a browser share: making reports, showing them, and watching that nothing goes wrong
// while a test clicks.

import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after } from "node:test";
import { chromium } from "playwright-core";

const command = process.env.ORVO_REPORT;
const source = process.env.ORVO_SOURCE;
const shots = process.env.ORVO_SHOTS;
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const environment = { ...process.env, LC_ALL: "C.UTF-8", TZ: "UTC", ORVO_REGISTRY: "/nonexistent/registry.xml" };

// Goes with the tests.
const scratch = mkdtempSync(join(tmpdir(), "orvo-browser-"));
let browser = null;
after(async () => {
  await browser?.close();
  rmSync(scratch, { recursive: true, force: true });
});

// A place for a file of this test.
export function place(name) {
  return join(scratch, name);
}

export function sample(name) {
  return join(source, "samples", name);
}

// Makes a report of a capture into the folder of that name, and gives the folder.
export function makeReport(name, capture, ...options) {
  const folder = place(name);
  const words = ["make", capture, "--out", folder, "--format", "xml", ...options];
  execFileSync(command, words, { env: environment, stdio: ["ignore", "ignore", "pipe"] });
  return folder;
}

function show(folder) {
  return new Promise((resolve, reject) => {
    const viewer = spawn(command, ["view", folder], { env: environment, stdio: ["ignore", "pipe", "inherit"] });
    viewer.once("error", reject);
    viewer.once("exit", (code) => reject(new Error(`the viewer ended with ${code}`)));
    viewer.stdout.once("data", (text) => resolve({ viewer, address: String(text).trim() }));
  });
}

// What may not happen on any page: a script of the data, an error, a file that is missing but those that are `lacking`,
// a request to elsewhere.
function watch(page, address, lacking) {
  const problems = [];
  page.on("dialog", (dialog) => {
    problems.push(`a dialog says ${dialog.message()}`);
    dialog.dismiss();
  });
  page.on("pageerror", (error) => problems.push(`an error: ${error.message}`));
  page.on("console", (message) => {
    if (lacking.some((file) => message.location().url === address + file)) return;
    if (["error", "warning"].includes(message.type())) problems.push(`${message.text()} (${message.location().url})`);
  });
  page.on("requestfailed", (request) => {
    // Frames that are left take their requests with them.
    if (request.failure().errorText !== "net::ERR_ABORTED") problems.push(`no answer: ${request.url()}`);
  });
  page.on("request", (request) => {
    if (!request.url().startsWith(address)) problems.push(`a request to elsewhere: ${request.url()}`);
  });
  return problems;
}

// Shows a report and calls `look` with the page; then fails when anything went wrong on the way.
export async function withReport(folder, look, { lacking = [], ...options } = {}) {
  browser ??= await chromium.launch({
    executablePath: process.env.CHROMIUM,
    // The sandbox of the browser does not work for root; what is shown here is our own.
    args: process.getuid() === 0 ? ["--no-sandbox"] : [],
  });
  const { viewer, address } = await show(folder);
  // Nothing moves, so that a click need not wait for it.
  const settings = { viewport: { width: 1280, height: 900 }, timezoneId: "UTC", reducedMotion: "reduce" };
  const context = await browser.newContext({ ...settings, ...options });
  try {
    const page = await context.newPage();
    page.setDefaultTimeout(60_000);
    const problems = watch(page, address, lacking);
    await page.goto(address);
    await look(page, address);
    assert.deepEqual(problems, []);
  } finally {
    await context.close();
    viewer.removeAllListeners("exit");
    viewer.kill("SIGTERM");
  }
}

// Keeps a picture of the page for whoever wants to look.
export async function picture(page, name) {
  mkdirSync(shots, { recursive: true });
  await page.screenshot({ path: join(shots, `${name}.png`) });
}

// Fails when the page shuts somebody out: findings of axe-core that it calls serious or critical.
export async function assertAccessible(page, what) {
  for (const frame of page.frames()) {
    if (!(await frame.evaluate(() => "axe" in globalThis))) await frame.evaluate(axe);
  }
  const { violations } = await page.evaluate(() => globalThis.axe.run({ resultTypes: ["violations"] }));
  const grave = violations.filter((finding) => ["serious", "critical"].includes(finding.impact));
  const told = grave.map(({ id, nodes }) => `${id}: ${nodes.slice(0, 3).map((node) => node.html)}`);
  assert.deepEqual(told, [], what);
}
