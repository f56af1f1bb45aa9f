// What the columns of tables hold. The head of a column names its kind in data-kind; a cell holds the plain value as the
// document has it, so that sorting and copying need no guess, and is dressed for readers when it is shown.
//
// A kind says how a text sorts (`key`; texts sort as texts), how a cell is dressed (`dress`), and whether it is a number
// (`isNumber`), which stands to the right and sorts from the largest first. `plain` words a text for other programs.

// A bar on a track that is 1 long.
function setBar(cell, share) {
  if (!Number.isFinite(share)) return;
  cell.classList.add("has-bar");
  if (share <= 0) return;
  const bar = make("span", { class: "bar" });
  bar.style.setProperty("--share", Math.min(1, share));
  cell.append(bar);
}

// Two lines: the rounded value, and below it the exact one.
function showBoth(cell, rounded, exact) {
  if (rounded === exact) {
    cell.textContent = exact;
    return;
  }
  cell.replaceChildren(make("span", { class: "rounded" }, rounded), " ", make("span", { class: "exact" }, exact));
}

function dressBytes(cell, text, column) {
  const number = plainNumber(text);
  if (Number.isNaN(number)) return;
  const exact = EXACT.format(number);
  showBoth(cell, number < 1024 ? exact : roundBytes(number), exact);
  if (column.largest) setBar(cell, number / column.largest);
}

function dressCount(cell, text, column) {
  const number = plainNumber(text);
  if (Number.isNaN(number)) return;
  showBoth(cell, number < 100000 ? EXACT.format(number) : roundCount(number), EXACT.format(number));
  if (column.largest) setBar(cell, number / column.largest);
}

function dressShare(cell, ratio) {
  cell.textContent = percent(ratio);
  if (Number.isFinite(ratio)) cell.title = `${EXACT.format(ratio * 100)} %`;
  setBar(cell, ratio);
}

function dressUnit(unit) {
  return (cell, text) => {
    if (text !== "") cell.append(" ", make("span", { class: "unit" }, unit));
  };
}

const SEVERITIES = [
  { name: "Informational", icon: "Info.gif" },
  { name: "Minor", icon: "minor.gif" },
  { name: "Major", icon: "Warning.gif" },
  { name: "Severe", icon: "Stop.gif" },
];

function dressSeverity(cell, text) {
  const severity = SEVERITIES.find((known) => known.name === text);
  if (!severity) return;
  const icon = make("img", { src: `Images/${severity.icon}`, alt: "", width: 16, height: 16 });
  cell.replaceChildren(make("span", { class: `severity ${text.toLowerCase()}` }, icon, text));
}

// Limits between good, fair and poor speech: R factors of ITU-T G.107 annex B, and their MOS.
function dressQuality(good, fair) {
  return (cell, text) => {
    const number = plainNumber(text);
    if (Number.isNaN(number)) return;
    const level = number >= good ? "good" : number >= fair ? "fair" : "poor";
    cell.replaceChildren(make("span", { class: `quality ${level}`, title: `${level} quality` }, text));
  };
}

function dressSignal(cell, text) {
  const number = plainNumber(text);
  if (Number.isNaN(number)) return;
  cell.append(" %");
  setBar(cell, number / 100);
}

// A protocol's name, as deep in its tree as the dots before it say.
function dressTree(cell, text) {
  const dots = /^(?:\. )*/.exec(text)[0];
  if (dots === "") return;
  cell.textContent = text.slice(dots.length);
  cell.classList.add("tree");
  cell.style.setProperty("--depth", Math.min(dots.length / 2, 12));
}

// A value of whatever kind the statistic has: a count, a number for readers, a date or a duration.
function valueNumber(text) {
  const plain = plainNumber(text);
  return Number.isNaN(plain) ? localNumber(text) : plain;
}

// What a statistic counts, its name says, which stands first in the row.
function dressValue(cell, text, column) {
  if (!/^\d{4,}$/.test(text)) return;
  const isBytes = /\bBytes$/.test(cell.parentElement?.cells?.[0]?.textContent ?? "");
  (isBytes ? dressBytes : dressCount)(cell, text, column);
}

// How much the second of two values between "|" is above the first.
function changeOf(text) {
  const [first, latest] = text.split("|").map(valueNumber);
  return latest - first;
}

function dressChange(cell, text) {
  if (text === "") return;
  const number = changeOf(text);
  if (!Number.isFinite(number)) {
    cell.textContent = "–";
    return;
  }
  cell.textContent = number > 0 ? `+${EXACT.format(number)}` : EXACT.format(number).replace("-", "\u2212");
  cell.classList.add(number > 0 ? "rises" : number < 0 ? "falls" : "stays");
}

// The protocols that carry another, from the outermost inwards; the last is the protocol itself.
function dressPath(cell, text) {
  const parts = text.split("\\");
  cell.textContent = parts.length > 1 ? parts.slice(0, -1).join(" › ") : "";
  cell.classList.add("faint");
}

// The time of day, and below it the date, which most often is the same everywhere.
function dressTime(cell, text) {
  const [, date, time] = /^(\S+) (\S+)$/.exec(text) ?? [];
  if (time) cell.replaceChildren(make("span", { class: "rounded" }, time), " ", make("span", { class: "exact" }, date));
}

const severityRank = (text) => SEVERITIES.findIndex((known) => known.name === text);
const NUMBERS = { key: plainNumber, isNumber: true };

const KINDS = {
  text: {},
  address: {},
  stream: {}, // two addresses, which may take a line each
  time: { isTime: true, dress: dressTime },
  duration: { key: durationSeconds, isNumber: true },
  number: { ...NUMBERS, dress: dressCount },
  identifier: NUMBERS,
  bytes: { ...NUMBERS, dress: dressBytes },
  ratio: { ...NUMBERS, dress: (cell, text) => text && dressShare(cell, plainNumber(text)) },
  percent: { key: localNumber, isNumber: true, dress: (cell, text) => text && dressShare(cell, localNumber(text) / 100) },
  "percent-value": { ...NUMBERS, dress: (cell, text) => text && dressShare(cell, plainNumber(text) / 100) },
  rate: { key: localNumber, isNumber: true },
  "rate-bytes": {
    key: localNumber,
    isNumber: true,
    dress: (cell, text) => text && showBoth(cell, `${roundBytes(localNumber(text))}/s`, text),
  },
  milliseconds: { ...NUMBERS, dress: dressUnit("ms") },
  seconds: { ...NUMBERS, dress: dressUnit("s") },
  dbm: { ...NUMBERS, dress: dressUnit("dBm") },
  megahertz: { ...NUMBERS, dress: dressUnit("MHz") },
  signal: { ...NUMBERS, dress: dressSignal },
  severity: { key: severityRank, isNumber: true, isLeft: true, dress: dressSeverity },
  mos: { ...NUMBERS, dress: dressQuality(4.03, 3.6) },
  rfactor: { ...NUMBERS, dress: dressQuality(80, 70) },
  tree: { dress: dressTree },
  value: { key: valueNumber, isNumber: true, dress: dressValue },
  change: { key: changeOf, isNumber: true, dress: dressChange, plain: (text) => String(changeOf(text)) },
  path: { dress: dressPath },
  trend: { key: (text) => trendPoints(text).at(-1) ?? Number.NaN, isNumber: true, isLeft: true, dress: dressTrend },
};

// The kind of a column that the engine named: numbers when all of `texts` are, else texts.
function guessKind(texts) {
  const filled = texts.filter((text) => text !== "");
  const areNumbers = filled.length > 0 && filled.every((text) => Number.isFinite(plainNumber(text)));
  return areNumbers ? "number" : "text";
}
