// The page: shows a view at a time in its main part, and answers the calls of the menu.

const MOST_EXTRA_TEXT = 300;

class Page {
  constructor(name) {
    this.page = PAGES[name];
    this.main = document.getElementById("view");
    this.status = document.getElementById("status");
    this.shows = 0; // raised by every view, so that one that was overtaken does not show up later
    this.grids = [];
    this.progress = make("progress", { max: 1, value: 0, "aria-label": "Read so far" });
    this.loading = make("div", { class: "loading", hidden: true }, make("span"), this.progress);
    this.main.before(this.loading);
  }

  start() {
    if (location.protocol === "file:") {
      this.explain(fileProblem());
      return;
    }
    this.menu = new Menu(document.getElementById("menu"));
    for (const call of Object.keys(VIEWS)) window[call] = () => this.go(call);
    window.addEventListener("hashchange", () => this.show(this.asked()));
    window.addEventListener("beforeprint", () => this.grids.forEach((grid) => grid.expandForPrint(true)));
    window.addEventListener("afterprint", () => this.grids.forEach((grid) => grid.expandForPrint(false)));
    window.addEventListener("load", () => this.checkStyles());
    this.show(this.asked());
  }

  checkStyles() {
    if (document.styleSheets.length > 0) return;
    const why = "The folder of this report has no StatsReport.css, so everything looks plain. The templates that it was made "
      + "with lack the file, or somebody has removed it.";
    this.main.before(make("p", { role: "alert" }, why));
  }

  // The view that the address names, else the page's first.
  asked() {
    const call = `load${location.hash.slice(1)}`;
    return call in VIEWS ? call : this.page.first;
  }

  go(call) {
    const hash = `#${call.slice("load".length)}`;
    if (location.hash === hash) this.show(call);
    else location.hash = hash;
  }

  async show(call) {
    const view = VIEWS[call];
    const show = (this.shows += 1);
    this.loading.hidden = true;
    this.menu.mark(call);
    this.main.setAttribute("aria-busy", "true");
    this.status.textContent = `Loading ${view.title}…`;
    if (!this.main.querySelector("article")) this.main.replaceChildren(make("p", { class: "note" }, "Loading…"));
    let content;
    try {
      content = await this.make(view, (share) => show === this.shows && this.showProgress(view, share));
    } catch (error) {
      if (show === this.shows) this.explain(error instanceof Problem ? error : faultProblem(view, error));
      return;
    }
    if (show !== this.shows) return;
    this.fill(content);
    document.title = `${view.title} – OrvoReports`;
    this.status.textContent = `${view.title} is shown.`;
  }

  // Small documents come before anybody could read that they do.
  showProgress(view, share) {
    this.loading.hidden = false;
    this.loading.firstChild.textContent = `Reading ${view.title}… ${Math.floor(share * 100)} %`;
    this.progress.value = share;
  }

  async make(view, onProgress) {
    const tree = await readDocument(view.document, view.wanted, onProgress);
    const name = view.sheetFor?.(tree.attribute(tree.root, "Version")) ?? view.sheet;
    const sheet = await readSheet(name, view.document);
    const sources = new Map();
    const fragment = sheet.transform(tree, (body, rows) => sources.set(body, rows));
    return { fragment, sources };
  }

  fill({ fragment, sources }) {
    drawCharts(fragment);
    this.loading.hidden = true;
    this.main.replaceChildren(fragment);
    this.main.removeAttribute("aria-busy");
    showPictures(this.main);
    dressFigures(this.main);
    for (const table of this.main.querySelectorAll("table.plain")) dressPlain(table);
    this.grids = [];
    startSteps(this.main, (part) => this.startGrids(part, sources));
    this.startGrids(this.main, sources);
    window.scrollTo(0, 0);
  }

  // Makes grids of the tables in `part` that are not hidden; those of other steps follow when they are shown.
  startGrids(part, sources) {
    for (const table of part.querySelectorAll("table.grid:not(.ready)")) {
      if (!table.closest("[hidden]")) this.grids.push(new Grid(table, sources.get(table.tBodies[0])));
    }
  }

  // Says in the place of the view why there is none.
  explain(problem) {
    this.loading.hidden = true;
    const links = problem.links.map(({ title, address }) => make("p", {}, make("a", { href: address }, title)));
    const title = make("h1", {}, problem.message);
    this.main.replaceChildren(
      make("article", { class: "problem" }, title, ...problem.text.split("\n").map((line) => make("p", {}, line)), ...links),
    );
    this.main.removeAttribute("aria-busy");
    this.status.textContent = problem.message;
  }
}

function fileProblem() {
  const folder = decodeURIComponent(location.pathname)
    .replace(/\/[^/]*$/, "")
    .replaceAll("'", "'\\''");
  return new Problem(
    "This report wants to be served",
    "Browsers do not let a page read the files beside it when it is opened from a disk.\n" +
      "This command serves the report to this computer alone, and opens it:\n" +
      `orvo-report view '${folder}'`,
  );
}

function faultProblem(view, error) {
  console.error(error);
  const text = String(error?.message ?? error).slice(0, MOST_EXTRA_TEXT);
  return new Problem(`${view.title} cannot be shown`, `The report's style sheet ${view.sheet} did not work: ${text}.`);
}

new Page(document.documentElement.dataset.page).start();
