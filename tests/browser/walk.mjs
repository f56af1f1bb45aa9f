// How a test gets round in a report: tabs, buttons, tables.

import assert from "node:assert/strict";

const tabsOf = (page) => page.frameLocator("#menu").getByRole("navigation", { name: "Parts of the report" });
const buttonsOf = (page) => page.frameLocator("#menu").getByRole("navigation", { name: "Views of this part" });

async function labels(navigation) {
  if ((await navigation.count()) === 0) return [];
  return (await navigation.locator(".item span[aria-hidden]").allTextContents()).map((text) => text.trim());
}

// Waits until the page shows what it was asked for.
export async function shown(page) {
  await tabsOf(page).waitFor();
  await page.locator("#view:not([aria-busy]) > *").first().waitFor();
}

export async function tabs(page) {
  return labels(tabsOf(page));
}

export async function buttons(page) {
  return labels(buttonsOf(page));
}

export async function openTab(page, label) {
  const tab = tabsOf(page).getByRole("link", { name: label, exact: true });
  if ((await tab.count()) !== 0) {
    // The page that is left looks just as complete as the one that comes.
    await Promise.all([page.waitForEvent("domcontentloaded"), tab.click()]);
  }
  await shown(page);
}

// Shows what a button would, without the mouse.
export async function call(page, name) {
  await page.evaluate((wanted) => window[wanted](), name);
  await page.waitForFunction((hash) => location.hash === hash, `#${name.slice("load".length)}`);
  await shown(page);
}

// The calls of the buttons that the page has.
export async function calls(page) {
  const pictures = page.frameLocator("#menu").locator("img[onclick]");
  return (await pictures.evaluateAll((images) => images.map((image) => image.getAttribute("onclick"))))
    .map((text) => /^parent\.(load[A-Za-z]+)\(\)$/.exec(text)[1]);
}

export async function press(page, label) {
  const button = buttonsOf(page).locator(".item", { hasText: label });
  await button.click();
  await buttonsOf(page).locator('[aria-current="true"]', { hasText: label }).waitFor();
  await shown(page);
}

// The texts of a column of the first large table, as they are shown from the top down.
export async function column(page, title) {
  return page.locator("table.grid").first().evaluate((table, wanted) => {
    const at = [...table.tHead.rows[0].cells].findIndex((cell) => cell.textContent.trim() === wanted);
    return [...table.tBodies[0].rows]
      .filter((row) => row.cells.length > at && row.cells[at].localName === "td")
      .map((row) => row.cells[at].textContent.trim());
  }, title);
}

export async function sortBy(page, title) {
  // By the name that a screen reader says, which has no arrow in it.
  await page.locator("table.grid").first().getByRole("button", { name: title, exact: true }).click();
  await page.locator("table.grid").first().locator("th[aria-sort]").waitFor();
}

export function assertSorted(numbers, descending) {
  const ordered = [...numbers].sort((a, b) => (descending ? b - a : a - b));
  assert.deepEqual(numbers, ordered);
}
