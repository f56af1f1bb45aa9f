// Dresses the parts of a view that are no tables of their own.

// Pictures of graphs lie in the folder Graphs; an address that leads elsewhere is not followed.
function showPictures(root) {
  for (const image of root.querySelectorAll("img[data-picture]")) {
    const name = /^\.[\\/]Graphs[\\/]([^\\/]+\.png)$/.exec(image.dataset.picture)?.[1];
    if (!name) continue;
    image.loading = "lazy";
    image.src = `Graphs/${encodeURIComponent(name)}`;
    image.addEventListener("error", () => image.closest("figure")?.classList.add("lost"));
  }
}

// Single figures: the value as it reads best, the exact one below it.
function dressFigures(root) {
  for (const element of root.querySelectorAll("[data-figure]")) {
    const kind = KINDS[element.dataset.figure];
    const text = element.textContent;
    if (text.trim() === "") element.textContent = "–";
    else kind?.dress?.(element, text, {});
  }
}

// Small tables, which need neither filter nor scroll bars.
function dressPlain(table) {
  const rows = new ReadyRows(table);
  const columns = readColumns(table, rows);
  for (const column of columns) {
    column.head.scope = "col";
    column.head.classList.add(`is-${column.name}`);
    column.head.classList.toggle("figure", Boolean(column.kind.isNumber && !column.kind.isLeft));
  }
  for (const row of rows.rows) dressRow(row, columns);
}

// Steps: parts of which one is shown at a time, such as the reports of a history, with buttons to go back and forth.
function startSteps(root) {
  for (const steps of root.querySelectorAll(".steps")) {
    const parts = [...steps.children];
    if (parts.length < 2) continue;
    let at = parts.length - 1;
    const choice = make("select", { "aria-label": "Report", on: { change: () => go(choice.selectedIndex) } });
    choice.append(...parts.map((part, i) => make("option", {}, `${i + 1}: ${part.dataset.step ?? ""}`)));
    const arrow = (image, title, step) =>
      make(
        "button",
        { type: "button", class: "tool arrow", title, "aria-label": title, on: { click: () => go(at + step) } },
        make("img", { src: `Images/${image}`, alt: "", width: 16, height: 16 }),
      );
    const back = arrow("LeftArrow.gif", "Earlier report", -1);
    const forth = arrow("RightArrow.gif", "Later report", 1);
    const go = (to) => {
      at = Math.max(0, Math.min(parts.length - 1, to));
      parts.forEach((part, i) => (part.hidden = i !== at));
      choice.selectedIndex = at;
      back.disabled = at === 0;
      forth.disabled = at === parts.length - 1;
    };
    steps.before(make("div", { class: "stepper" }, back, choice, forth));
    go(at);
  }
}
