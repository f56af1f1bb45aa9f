// What stands above a table: the filter, the count of rows, the choice of columns, and ways to take the rows along.

const FEWEST_ROWS_TO_FILTER = 8;

class GridTools {
  constructor(grid) {
    this.grid = grid;
    this.count = make("span", { class: "row-count", role: "status" });
    // Few rows are seen at a glance.
    const filter = grid.rows.length > FEWEST_ROWS_TO_FILTER ? [this.filterBox()] : [];
    this.element = make("div", { class: "tools" }, ...filter, this.count, ...this.buttons());
  }

  filterBox() {
    const grid = this.grid;
    return make("input", {
      type: "search",
      class: "filter",
      placeholder: "Filter rows…",
      autocomplete: "off",
      spellcheck: false,
      "aria-label": `Filter: ${grid.name}`,
      on: { input: (event) => grid.filter(event.target.value) },
    });
  }

  buttons() {
    const buttons = [];
    const add = (title, action) =>
      buttons.push(make("button", { type: "button", class: "tool", on: { click: action } }, title));
    if (this.grid.groups.length > 1) {
      add("Unfold all", () => this.grid.foldAll(false));
      add("Fold all", () => this.grid.foldAll(true));
    }
    if (this.grid.columns.length > 6) buttons.push(this.columnChoice());
    if (navigator.clipboard) add("Copy", () => this.copy());
    add("CSV", () => this.download());
    buttons.at(-1).setAttribute("aria-label", `Download as CSV: ${this.grid.name}`);
    return buttons;
  }

  columnChoice() {
    const boxes = this.grid.columns.slice(1).map((column) =>
      make(
        "label",
        {},
        make("input", {
          type: "checkbox",
          checked: !column.isHidden,
          on: { change: (event) => this.grid.showColumn(column, event.target.checked) },
        }),
        column.title,
      ),
    );
    const choice = make("details", { class: "columns" }, make("summary", { class: "tool" }, "Columns"));
    choice.append(make("div", { class: "choices", role: "group", "aria-label": "Columns to show" }, ...boxes));
    choice.addEventListener("keydown", (event) => {
      if (event.key !== "Escape") return;
      choice.open = false;
      choice.querySelector("summary").focus();
    });
    choice.addEventListener("focusout", (event) => {
      if (event.relatedTarget && !choice.contains(event.relatedTarget)) choice.open = false;
    });
    return choice;
  }

  say(text) {
    this.count.textContent = text;
  }

  showCount() {
    const { grid } = this;
    const all = grid.rows.length;
    const shown = grid.hits ? `${EXACT.format(grid.count)} of ${EXACT.format(all)}` : EXACT.format(all);
    const cut = grid.count > MOST_ROWS ? `; the first ${EXACT.format(MOST_ROWS)} are shown` : "";
    this.say(`${shown} ${all === 1 ? "row" : "rows"}${cut}`);
  }

  // The rows as the table has them now, with all columns and plain values, written by `line`.
  async collect(line) {
    const { grid } = this;
    const rows = grid.visibleRows();
    const groupOf = new Map();
    for (const group of grid.groups) for (const i of group.members) groupOf.set(i, group.texts[0]);
    const lines = [line(grid.columns.map((column) => column.title))];
    const add = (at) => {
      const texts = grid.columns.map(({ index, kind }) => {
        const text = grid.rows.text(rows[at], index);
        return kind.plain ? kind.plain(text) : text;
      });
      // Rows of a group leave out what its head says once.
      if (texts[0] === "") texts[0] = groupOf.get(rows[at]) ?? "";
      lines.push(line(texts));
    };
    const onProgress = (share) => this.say(`Collecting rows… ${Math.round(share * 100)} %`);
    await inSlices(rows.length, add, () => false, onProgress);
    this.showCount();
    return lines;
  }

  async copy() {
    const lines = await this.collect(tabLine);
    try {
      await navigator.clipboard.writeText(`${lines.join("\n")}\n`);
      this.say("Copied; paste it into a spreadsheet.");
    } catch {
      this.say("The browser does not let this page copy; CSV works.");
    }
  }

  async download() {
    const lines = await this.collect(commaLine);
    // The mark at the beginning tells spreadsheets that this is UTF-8.
    const file = new Blob(["\ufeff", lines.join("\r\n"), "\r\n"], { type: "text/csv" });
    const address = URL.createObjectURL(file);
    make("a", { href: address, download: `${this.grid.name.replace(/[^\w .-]+/g, "-")}.csv` }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
  }
}

// Spreadsheets run texts that begin like this; names in a capture are whatever somebody sent.
function defuse(text) {
  return /^[=+\-@\t\r]/.test(text) && !Number.isFinite(plainNumber(text)) ? `'${text}` : text;
}

// RFC 4180.
function commaLine(texts) {
  return texts
    .map(defuse)
    .map((text) => (/[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text))
    .join(",");
}

function tabLine(texts) {
  return texts.map((text) => defuse(text).replace(/[\t\r\n]+/g, " ")).join("\t");
}
