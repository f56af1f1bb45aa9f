// Pictures drawn of tables: sparklines in cells, columns and lines over small tables. The table stays for those who
// cannot see the picture.

// The points of a trend: numbers between "|"; what is no number leaves a gap.
function trendPoints(text) {
  return text
    .split("|")
    .filter((part) => part !== "")
    .map(valueNumber);
}

// At most `limit` of the points, evenly taken and the last among them.
function thinOut(points, limit) {
  if (points.length <= limit) return points;
  return Array.from({ length: limit }, (_, i) => points[Math.round((i * (points.length - 1)) / (limit - 1))]);
}

function dressTrend(cell, text) {
  const points = trendPoints(text).filter(Number.isFinite);
  if (points.length < 2) {
    cell.textContent = points.length === 1 ? "one report" : "";
    cell.classList.add("faint");
    return;
  }
  const width = 120;
  const height = 26;
  const shown = thinOut(points, 60);
  const least = Math.min(...shown);
  const span = Math.max(...shown) - least;
  const x = (i) => 3 + (i * (width - 6)) / (shown.length - 1);
  const y = (value) => (span === 0 ? height / 2 : height - 4 - ((value - least) / span) * (height - 8));
  const line = shown.map((value, i) => `${x(i).toFixed(1)},${y(value).toFixed(1)}`).join(" ");
  const label = `${points.length} reports, from ${EXACT.format(points[0])} to ${EXACT.format(points.at(-1))}`;
  cell.replaceChildren(
    makeSvg(
      "svg",
      { class: "spark", viewBox: `0 0 ${width} ${height}`, role: "img", "aria-label": label },
      makeSvg("polygon", { points: `3,${height} ${line} ${width - 3},${height}` }),
      makeSvg("polyline", { points: line }),
      makeSvg("circle", { cx: x(shown.length - 1), cy: y(shown.at(-1)), r: 2.5 }),
    ),
  );
}

// The next round number at or above `value`: 1, 2 or 5 times a power of ten, and for bytes 1 to 1000 of a unit.
function roundUp(value, isBytes) {
  const unit = isBytes ? 1024 ** Math.floor(Math.log2(value || 1) / 10) : 1;
  const power = unit * 10 ** Math.floor(Math.log10(value / unit || 1));
  return [1, 2, 4, 5, 10].map((step) => step * power).find((limit) => limit >= value);
}

// Label and value of each row of a table of two columns.
function pointsOf(table) {
  return [...table.tBodies[0].rows].map((row) => ({
    label: row.cells[0].textContent,
    value: plainNumber(row.cells[1].textContent) || 0,
  }));
}

const CHART_WIDTH = 560;
const CHART_HEIGHT = 220;
const CHART_LEFT = 56;
const CHART_BOTTOM = 30;
const CHART_TOP = 14;

function drawAxis(svg, top, format) {
  for (let i = 0; i <= 4; i += 1) {
    const y = CHART_HEIGHT - CHART_BOTTOM - (i / 4) * (CHART_HEIGHT - CHART_BOTTOM - CHART_TOP);
    svg.append(
      makeSvg("line", { class: "gridline", x1: CHART_LEFT, x2: CHART_WIDTH, y1: y, y2: y }),
      makeSvg("text", { class: "tick", x: CHART_LEFT - 8, y: y + 4, "text-anchor": "end" }, format((top * i) / 4)),
    );
  }
}

function makeChart(table, points) {
  const title = table.caption?.textContent ?? "";
  const isBytes = table.dataset.unit === "bytes";
  const format = isBytes ? roundBytes : roundCount;
  const top = roundUp(Math.max(4, ...points.map((point) => point.value)), isBytes);
  const svg = makeSvg("svg", {
    class: "chart",
    viewBox: `0 0 ${CHART_WIDTH} ${CHART_HEIGHT}`,
    role: "img",
    "aria-label": `${title}; the values stand in the table that follows`,
  });
  drawAxis(svg, top, format);
  const inner = CHART_HEIGHT - CHART_BOTTOM - CHART_TOP;
  return { svg, format, y: (value) => CHART_HEIGHT - CHART_BOTTOM - (value / top) * inner };
}

function drawColumns(table) {
  const points = pointsOf(table);
  const { svg, format, y } = makeChart(table, points);
  const step = (CHART_WIDTH - CHART_LEFT) / points.length;
  const width = Math.min(64, step * 0.66);
  const total = points.reduce((sum, point) => sum + point.value, 0) || 1;
  points.forEach((point, i) => {
    const middle = CHART_LEFT + step * (i + 0.5);
    const top = y(point.value);
    const height = CHART_HEIGHT - CHART_BOTTOM - top;
    const label = `${point.label}: ${EXACT.format(point.value)} (${percent(point.value / total)})`;
    svg.append(
      makeSvg(
        "rect",
        { class: "column", x: middle - width / 2, y: top, width, height, rx: Math.min(4, height / 2) },
        makeSvg("title", {}, label),
      ),
      makeSvg("text", { class: "value", x: middle, y: top - 5, "text-anchor": "middle" }, format(point.value)),
    );
    const every = Math.ceil(points.length / 12);
    if (i % every === 0) {
      const y0 = CHART_HEIGHT - 10;
      svg.append(makeSvg("text", { class: "tick", x: middle, y: y0, "text-anchor": "middle" }, shorten(point.label)));
    }
  });
  return svg;
}

function drawLine(table) {
  const points = thinOut(pointsOf(table), 400);
  const { svg, format, y } = makeChart(table, points);
  const step = (CHART_WIDTH - CHART_LEFT - 16) / Math.max(1, points.length - 1);
  const x = (i) => CHART_LEFT + 8 + i * step;
  const line = points.map((point, i) => `${x(i).toFixed(1)},${y(point.value).toFixed(1)}`).join(" ");
  const bottom = CHART_HEIGHT - CHART_BOTTOM;
  svg.append(
    makeSvg("polygon", { class: "area", points: `${x(0)},${bottom} ${line} ${x(points.length - 1)},${bottom}` }),
    makeSvg("polyline", { class: "line", points: line }),
  );
  points.forEach((point, i) => {
    const label = `${point.label}: ${EXACT.format(point.value)} (${format(point.value)})`;
    const dot = { class: "dot", cx: x(i), cy: y(point.value), r: points.length > 60 ? 2 : 4 };
    svg.append(makeSvg("circle", dot, makeSvg("title", {}, label)));
  });
  for (const i of new Set([0, points.length - 1])) {
    const anchor = i === 0 ? "start" : "end";
    svg.append(makeSvg("text", { class: "tick", x: x(i), y: CHART_HEIGHT - 10, "text-anchor": anchor }, points[i].label));
  }
  return svg;
}

function shorten(text) {
  const short = text
    .replace(/^(\d+) Bytes or Fewer$/, "≤ $1")
    .replace(/^(\d+) Bytes or More$/, "≥ $1")
    .replace(/^(\d+) to (\d+) Bytes$/, "$1–$2");
  return short.length > 14 ? `${short.slice(0, 13)}…` : short;
}

const CHARTS = { "chart-columns": drawColumns, "chart-line": drawLine };

function drawCharts(root) {
  for (const [name, draw] of Object.entries(CHARTS)) {
    for (const table of root.querySelectorAll(`table.${name}`)) {
      if (table.tBodies[0]?.rows.length) table.before(draw(table));
      table.classList.add("unseen");
    }
  }
}
