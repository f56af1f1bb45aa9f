// Runs in the browser, inside of a page that sheets_test writes: every style sheet over every document, by the
// interpreter of the reports, against what xsltproc made of them. What differs stands in the page afterwards.

const WHITE_SPACE = /[ \t\r\n]+/g;

// Numbers are worded differently once they are large.
function sameNumber(text) {
  return /^-?\d+(\.\d+)?(e[+-]?\d+)?$/.test(text) ? String(Number(text)) : text;
}

// A tree as text: attributes sorted, white space collapsed.
function describe(node) {
  if (node.nodeType === Node.TEXT_NODE) return sameNumber(node.data.replace(WHITE_SPACE, " ").trim());
  const parts = Array.from(node.childNodes, describe).filter((part) => part !== "");
  const content = parts.join("\n");
  if (node.nodeType !== Node.ELEMENT_NODE) return content;
  const attributes = Array.from(node.attributes, ({ name, value }) => ` ${name}=${JSON.stringify(value.trim())}`);
  return `<${node.localName}${attributes.sort().join("")}>\n${content}\n</>`;
}

// Neighbouring texts are one in a document that was parsed.
function normalised(tree) {
  tree.normalize();
  return describe(tree);
}

function firstDifference(got, expected) {
  const a = got.split("\n");
  const b = expected.split("\n");
  const at = a.findIndex((line, i) => line !== b[i]);
  const line = at < 0 ? a.length : at;
  return `line ${line}: got ${JSON.stringify(a[line])}, expected ${JSON.stringify(b[line])}`;
}

function parse(text) {
  return new DOMParser().parseFromString(text, "application/xml");
}

// The rows that a grid makes when they are looked at are those that the style sheet makes at once.
function checkRows(sheet, source, whole) {
  const bodies = new Map();
  const lazy = sheet.transform(source, (body, rows) => bodies.set(body, rows));
  for (const [body, rows] of bodies) {
    for (let i = 0; i < rows.length; i += 1) {
      const row = rows.element(i);
      body.append(row);
      Array.from(row.cells).forEach((cell, column) => {
        const text = rows.text(i, column);
        if (text !== cell.textContent) throw new Error(`cell ${i}, ${column}: "${text}", not "${cell.textContent}"`);
      });
    }
  }
  if (normalised(lazy) !== whole) throw new Error("rows that are made one by one differ");
  return bodies.size;
}

function checkPair(pair, sheets, documents, failures) {
  const sheet = new StyleSheet(parse(sheets[pair.sheet]));
  const source = parse(documents[pair.document]);
  const got = normalised(sheet.transform(source));
  const expected = normalised(new DOMParser().parseFromString(pair.expected, "text/html").body);
  const [, content] = /^<body>\n([^]*)\n<\/>$/.exec(expected);
  if (got !== content) failures.push(`${pair.sheet} over ${pair.document}: ${firstDifference(got, content)}`);
  return checkRows(sheet, source, got);
}

function checkAll({ sheets, documents, pairs, refused }) {
  const failures = [];
  let bodies = 0;
  for (const pair of pairs) {
    try {
      bodies += checkPair(pair, sheets, documents, failures);
    } catch (error) {
      failures.push(`${pair.sheet} over ${pair.document}: ${error.message}`);
    }
  }
  for (const [name, text] of Object.entries(refused)) {
    try {
      new StyleSheet(parse(text)).transform(parse("<a><b href='javascript:x'/></a>"));
      failures.push(`${name}: was not refused`);
    } catch (error) {
      if (!(error instanceof Error)) failures.push(`${name}: ${error}`);
    }
  }
  return { pairs: pairs.length, refused: Object.keys(refused).length, bodies, failures };
}

const result = document.createElement("pre");
result.id = "result";
result.textContent = JSON.stringify(checkAll(JSON.parse(document.getElementById("work").textContent)));
document.body.replaceChildren(result);
