// A table that sorts, filters, folds its groups and, when it is long, keeps only the rows in view.

// Up to this many rows are laid out together.
const MOST_ROWS_AT_ONCE = 250;
// Rows above and below the view that are kept, so that scrolling meets no gap.
const SPARE_ROWS = 12;
// Browsers end the page somewhere above 17 million pixels; beyond this many rows a table says so.
const MOST_ROWS = 380000;

// On paper a table is as long as it is.
const MOST_ROWS_ON_PAPER = 1000;

class Grid {
  constructor(table, source) {
    this.table = table;
    this.body = table.tBodies[0];
    this.rows = source ?? new ReadyRows(table);
    this.groups = this.rows.groups ?? NO_GROUPS;
    this.columns = readColumns(table, this.rows);
    this.name = table.caption?.textContent.trim() || "Table";
    this.natural = Uint32Array.from({ length: this.rows.length }, (_, i) => i);
    this.order = this.natural; // row indices by the sorted column
    this.groupOrder = null;
    this.hits = null; // 1 for each row that the filter lets through, or null without a filter
    this.folded = new Set("folded" in table.dataset && this.groups.length > 1 ? this.groups.keys() : []);
    this.sorts = 0; // raised by every sorting, so that an older one that still runs can stop
    this.filters = 0; // the same of filtering
    this.dressed = new WeakSet();
    this.frame();
    this.update();
    const sorted = this.columns.find(({ head }) => "sorted" in head.dataset);
    if (sorted && this.rows.length > 1) this.sort(sorted);
  }

  frame() {
    this.table.classList.add("ready");
    this.scroller = make("div", { class: "scroller", tabIndex: 0, role: "region", "aria-label": this.name });
    const frame = make("div", { class: "frame" }, this.scroller);
    this.table.replaceWith(frame);
    this.scroller.append(this.table);
    this.tools = new GridTools(this);
    frame.prepend(this.tools.element);
    for (const column of this.columns) this.frameHead(column);
    this.groups.forEach((group, g) => this.frameGroup(group, g));
    this.scroller.addEventListener("scroll", () => this.onScroll(), { passive: true });
    const watcher = new ResizeObserver(() => this.showEdges());
    watcher.observe(this.scroller);
    watcher.observe(this.table);
  }

  frameHead(column) {
    const { head } = column;
    head.scope = "col";
    head.hidden = column.isHidden;
    head.classList.toggle("figure", Boolean(column.kind.isNumber && !column.kind.isLeft));
    head.replaceChildren(
      make("button", { type: "button", class: "sorter", on: { click: () => this.sort(column) } }, column.title),
    );
  }

  frameGroup(group, g) {
    dressRow(group.head, this.columns);
    this.dressed.add(group.head);
    const first = group.head.cells[0];
    group.button = make(
      "button",
      { type: "button", class: "folder", on: { click: () => this.fold(g) } },
      ...first.childNodes,
      make("span", { class: "tally" }, EXACT.format(group.members.length)),
    );
    first.replaceChildren(group.button);
  }

  // --- what is shown ---

  fold(g) {
    if (!this.folded.delete(g)) this.folded.add(g);
    this.update(true);
  }

  foldAll(isFolded) {
    this.folded = new Set(isFolded ? this.groups.keys() : []);
    this.update();
  }

  // Numbers go from the largest down first, texts from a to z.
  async sort(column) {
    const isSame = this.sorted?.column === column;
    const first = column.kind.isNumber || column.kind.isTime ? -1 : 1;
    const sign = isSame ? -this.sorted.sign : first;
    const sort = (this.sorts += 1);
    this.tools.say("Sorting…");
    column.keys ??= await this.readKeys(column, () => this.sorts !== sort);
    if (this.sorts !== sort) return;
    this.sorted = { column, sign };
    this.order = sortedPlaces(column.keys, sign);
    this.sortGroups(column, sign);
    for (const other of this.columns) other.head.removeAttribute("aria-sort");
    column.head.setAttribute("aria-sort", sign > 0 ? "ascending" : "descending");
    this.update();
  }

  // By what the rows sort; null when it was not wanted any more.
  async readKeys(column, isStale) {
    const texts = new Array(this.rows.length);
    const read = (i) => (texts[i] = this.rows.text(i, column.index));
    return (await inSlices(texts.length, read, isStale)) ? keysOf(column, texts) : null;
  }

  sortGroups(column, sign) {
    if (this.groups === NO_GROUPS || this.groups.length === 0) return;
    this.groupOrder = sortedPlaces(keysOf(column, this.groups.map((group) => group.texts[column.index] ?? "")), sign);
  }

  async filter(text) {
    const words = text.toLowerCase().split(/\s+/).filter(Boolean);
    const filter = (this.filters += 1);
    // Whoever types on asks for some of the rows that there are already.
    const before = this.hits && text.startsWith(this.hitsOf) ? this.hits : null;
    if (words.length === 0) {
      this.hits = null;
      this.update();
      return;
    }
    this.tools.say("Filtering…");
    this.words ??= new Array(this.rows.length);
    const hits = new Uint8Array(this.rows.length);
    const look = (i) => {
      if (before !== null && before[i] === 0) return;
      const found = (this.words[i] ??= this.rows.words(i).toLowerCase());
      hits[i] = words.every((word) => found.includes(word)) ? 1 : 0;
    };
    if (!(await inSlices(this.rows.length, look, () => this.filters !== filter))) return;
    this.addHitsOfHeads(hits, words);
    this.hits = hits;
    this.hitsOf = text;
    this.update();
  }

  // A group whose head fits is shown whole.
  addHitsOfHeads(hits, words) {
    for (const group of this.groups) {
      const head = group.texts[0].toLowerCase();
      if (words.every((word) => head.includes(word))) for (const i of group.members) hits[i] = 1;
    }
  }

  // Row indices in the order of the table, without those that the filter holds back.
  visibleRows() {
    return this.hits ? this.order.filter((i) => this.hits[i]) : this.order;
  }

  // What stands in the body, from above: rows by their indices, heads of groups as -1 - index.
  listItems() {
    const rows = this.visibleRows();
    this.count = rows.length;
    if (this.groups.length === 0) return rows.subarray(0, MOST_ROWS);
    const owner = new Map();
    this.groups.forEach((group, g) => group.members.forEach((i) => owner.set(i, g)));
    const members = this.groups.map(() => []);
    for (const i of rows) members[owner.get(i)]?.push(i);
    const items = [];
    for (const g of this.groupOrder ?? this.groups.keys()) {
      if (this.hits && members[g].length === 0) continue;
      const isOpen = this.hits !== null || !this.folded.has(g);
      this.groups[g].button.setAttribute("aria-expanded", String(isOpen));
      items.push(-1 - g);
      if (isOpen) items.push(...members[g]);
    }
    return items;
  }

  update(keepPlace = false) {
    this.items = this.listItems();
    this.isLong = this.items.length > MOST_ROWS_AT_ONCE;
    this.table.classList.toggle("long", this.isLong);
    this.table.setAttribute("aria-rowcount", this.isLong ? this.items.length + 1 : -1);
    if (!this.isLong) this.table.removeAttribute("aria-rowcount");
    if (!keepPlace) this.scroller.scrollTop = 0;
    this.range = null;
    this.render();
    this.tools.showCount();
  }

  // --- what is in view ---

  // Marks the sides where columns are out of view.
  showEdges() {
    const { scrollLeft, scrollWidth, clientWidth, offsetHeight } = this.scroller;
    const frame = this.scroller.parentElement;
    frame.classList.toggle("more-left", scrollLeft > 1);
    frame.classList.toggle("more-right", scrollLeft + clientWidth < scrollWidth - 1);
    frame.style.setProperty("--tools-height", `${frame.clientHeight - offsetHeight}px`);
  }

  onScroll() {
    this.showEdges();
    if (!this.isLong || this.isWaiting) return;
    this.isWaiting = true;
    requestAnimationFrame(() => {
      this.isWaiting = false;
      this.render();
    });
  }

  render() {
    if (this.items.length === 0) {
      this.showNothing();
      return;
    }
    const [from, to] = this.isLong ? this.rangeInView() : [0, this.items.length];
    if (this.range && this.range[0] === from && this.range[1] === to) return;
    const active = document.activeElement;
    this.range = [from, to];
    const rows = [];
    for (let i = from; i < to; i += 1) rows.push(this.rowOf(i));
    if (this.isLong) {
      rows.unshift(this.spacer(from * this.rowHeight));
      rows.push(this.spacer((this.items.length - to) * this.rowHeight));
    }
    this.body.replaceChildren(...rows);
    if (active !== document.activeElement && this.body.contains(active)) active.focus({ preventScroll: true });
    if (this.isLong) this.keepWidths();
  }

  rangeInView() {
    this.rowHeight = Number.parseFloat(getComputedStyle(this.table).getPropertyValue("--row-height")) || 44;
    const inView = Math.ceil((this.scroller.clientHeight || 800) / this.rowHeight);
    const first = Math.floor(this.scroller.scrollTop / this.rowHeight);
    // Windows begin at multiples of the spare rows, so that most scrolling changes nothing.
    const from = Math.max(0, Math.floor(first / SPARE_ROWS) * SPARE_ROWS - SPARE_ROWS);
    return [from, Math.min(this.items.length, first + inView + 2 * SPARE_ROWS)];
  }

  rowOf(place) {
    const item = this.items[place];
    const row = item < 0 ? this.groups[-1 - item].head : this.rows.element(item);
    if (!this.dressed.has(row)) {
      dressRow(row, this.columns);
      this.dressed.add(row);
    }
    if (this.isLong) row.setAttribute("aria-rowindex", place + 2);
    else row.removeAttribute("aria-rowindex");
    return row;
  }

  spacer(height) {
    const cell = make("td", { colSpan: this.columns.length });
    cell.style.height = `${height}px`;
    return make("tr", { class: "spacer", "aria-hidden": "true" }, cell);
  }

  // A row that says something of the rows.
  remark(text) {
    return make("tr", { class: "nothing" }, make("td", { colSpan: this.columns.length }, text));
  }

  showNothing() {
    this.body.replaceChildren(this.remark(this.hits ? "No row holds what the filter asks for." : "There are no rows."));
  }

  // Columns only grow while rows come and go, so that nothing jumps.
  keepWidths() {
    const widths = this.columns.map((column) => (column.isHidden ? 0 : column.head.offsetWidth));
    this.columns.forEach((column, i) => {
      if (widths[i] <= (column.width ?? 0)) return;
      column.width = widths[i];
      column.head.style.minWidth = `${widths[i]}px`;
    });
  }

  showColumn(column, isShown) {
    column.isHidden = !isShown;
    column.head.hidden = !isShown;
    this.groups.forEach((group) => (group.head.cells[column.index].hidden = !isShown));
    for (let i = 0; i < (this.rows.rows?.length ?? 0); i += 1) {
      const cell = this.rows.rows[i].cells[column.index];
      if (cell) cell.hidden = !isShown;
    }
    this.range = null;
    this.render();
  }

  // Paper has no scroll bars: lays out as many rows as make sense there.
  expandForPrint(isPrinting) {
    if (!this.isLong) return;
    const items = this.items;
    if (isPrinting) {
      this.items = items.slice(0, MOST_ROWS_ON_PAPER);
      this.isLong = false;
    }
    this.range = null;
    this.render();
    if (isPrinting && items.length > MOST_ROWS_ON_PAPER) {
      const [printed, all] = [MOST_ROWS_ON_PAPER, items.length].map((count) => EXACT.format(count));
      this.body.append(this.remark(`The first ${printed} of ${all} rows. A filter, or the CSV file, has the others.`));
    }
    this.items = items;
    this.isLong = items.length > MOST_ROWS_AT_ONCE;
  }
}
