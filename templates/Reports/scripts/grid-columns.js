// The columns of a table: what they are called, what they hold, and how their values sort.

const NO_GROUPS = [];

function readColumns(table, rows) {
  const heads = [...table.tHead.rows[0].cells];
  return heads.map((head, index) => {
    const title = head.textContent.trim();
    const name = head.dataset.kind === "auto" ? guessKind(firstTexts(rows, index)) : (head.dataset.kind ?? "text");
    const kind = KINDS[name] ?? KINDS.text;
    const column = { index, title, name, kind, head, isHidden: "hidden" in head.dataset };
    if ("bar" in head.dataset) column.largest = largestOf(rows, column);
    return column;
  });
}

function firstTexts(rows, column) {
  return Array.from({ length: Math.min(rows.length, 200) }, (_, i) => rows.text(i, column));
}

function largestOf(rows, column) {
  let largest = 0;
  for (let i = 0; i < rows.length; i += 1) largest = Math.max(largest, column.kind.key(rows.text(i, column.index)) || 0);
  return largest;
}

// Texts sort so that 9 comes before 10, without regard to capitals.
function textKey(text) {
  return text.toLowerCase().replace(/\d+/g, (digits) => digits.padStart(12, "0"));
}

// The keys of texts of one column, by which they are compared: numbers, NaN for none, or texts.
function keysOf(column, texts) {
  if (column.kind.isTime) return dateKeys(texts);
  return column.kind.key ? Float64Array.from(texts, column.kind.key) : texts.map(textKey);
}

// The places of keys in their order; what has no value comes last, whichever way the others go, and equals stay as they
// stand.
function sortedPlaces(keys, sign) {
  const isMissing = (key) => key === "" || Number.isNaN(key);
  const all = Uint32Array.from(keys.keys());
  const filled = all.filter((i) => !isMissing(keys[i]));
  filled.sort((a, b) => (keys[a] < keys[b] ? -sign : keys[a] > keys[b] ? sign : a - b));
  const places = new Uint32Array(all.length);
  places.set(filled);
  if (filled.length < all.length) places.set(all.filter((i) => isMissing(keys[i])), filled.length);
  return places;
}

function dressRow(row, columns) {
  for (const column of columns) {
    const cell = row.cells[column.index];
    if (!cell) continue;
    const text = cell.textContent;
    cell.classList.add(`is-${column.name}`);
    if (column.kind.isNumber && !column.kind.isLeft) cell.classList.add("figure");
    cell.hidden = column.isHidden;
    column.kind.dress?.(cell, text, column);
    if (!column.kind.dress && text.length > 40) {
      cell.classList.add("wordy");
      cell.title = text;
    }
  }
}
