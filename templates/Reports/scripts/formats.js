// How values read: exact numbers with separators, rounded units, shares, dates.

const EXACT = new Intl.NumberFormat("en", { maximumFractionDigits: 6 });
const ONE_DIGIT = new Intl.NumberFormat("en", { maximumFractionDigits: 1 });
const THREE_DIGITS = new Intl.NumberFormat("en", { maximumSignificantDigits: 3 });

const BYTE_UNITS = ["B", "KiB", "MiB", "GiB", "TiB", "PiB"];
const COUNT_UNITS = ["", "k", "M", "G", "T", "P"];

function roundTo(number, step, units) {
  let unit = 0;
  let rest = Math.abs(number);
  while (rest >= step && unit + 1 < units.length) {
    rest /= step;
    unit += 1;
  }
  const isExact = unit === 0 && Number.isInteger(number);
  const digits = isExact ? EXACT.format(number) : THREE_DIGITS.format(Math.sign(number) * rest);
  return units[unit] ? `${digits} ${units[unit]}` : digits;
}

const roundBytes = (number) => roundTo(number, 1024, BYTE_UNITS);
const roundCount = (number) => roundTo(number, 1000, COUNT_UNITS);

// A number as the engine writes it; NaN for a text that is none.
function plainNumber(text) {
  return text.trim() === "" ? Number.NaN : Number(text);
}

// A number that was written for readers of some language: with separators, and with three digits after the last one.
function localNumber(text) {
  const match = /^\s*([-\u2212]?)((?:\d|[\s.,'\u2019\u00a0\u202f](?=\d))+)\s*$/.exec(text);
  if (!match) return Number.NaN;
  const digits = match[2].replace(/\D/g, "");
  const hasFraction = /\D\d{3}$/.test(match[2]);
  const number = hasFraction ? Number(digits) / 1000 : Number(digits);
  return match[1] ? -number : number;
}

// "1:02:03.5", "2d 01:02:03" and plain seconds, in seconds.
function durationSeconds(text) {
  const match = /^\s*(?:(\d+)\D+\s)?(?:(\d+):)?(?:(\d+):)?(\d+(?:[.,]\d+)?)\s*$/.exec(text);
  if (!match) return Number.NaN;
  const [, days, first, second, rest] = match;
  const hours = second === undefined ? 0 : Number(first ?? 0);
  const minutes = Number((second === undefined ? first : second) ?? 0);
  return Number(days ?? 0) * 86400 + hours * 3600 + minutes * 60 + Number(rest.replace(",", "."));
}

// Dates come in the order of the report's locale, with a year of four digits. Which of the others is the day shows when
// one of them is over 12; until then the month comes first where slashes stand, and the day elsewhere.
function dateKeys(texts) {
  // Of a hundred thousand times many are the same.
  const parts = new Map();
  for (const text of texts) if (!parts.has(text)) parts.set(text, text.match(/\d+/g) ?? []);
  const split = [...parts.values()];
  const isYearFirst = split.some(([a]) => a?.length === 4);
  const isMonthFirst =
    !split.some(([a]) => Number(a) > 12) &&
    (split.some(([, b]) => Number(b) > 12) || texts.some((text) => text.includes("/")));
  const keys = new Map();
  for (const [text, [a, b, c, hours = 0, minutes = 0, seconds = 0, fraction = 0]] of parts) {
    const [year, month, day] = isYearFirst ? [a, b, c] : isMonthFirst ? [c, a, b] : [c, b, a];
    const days = Date.UTC(Number(year), Number(month) - 1, Number(day)) / 1000;
    keys.set(text, days + Number(hours) * 3600 + Number(minutes) * 60 + Number(seconds) + Number(`0.${fraction}`));
  }
  return Float64Array.from(texts, (text) => keys.get(text));
}

function percent(ratio) {
  if (!Number.isFinite(ratio)) return "–";
  const shown = ratio * 100;
  if (shown > 0 && shown < 0.05) return "< 0.1 %";
  return `${ONE_DIGIT.format(shown)} %`;
}
