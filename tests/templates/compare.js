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

// As it comes over a network: in pieces, of which this one is short enough to tear everything apart somewhere.
function treeOf(text, piece = 1001) {
  const reader = new TreeReader();
  for (let at = 0; at < text.length; at += piece) reader.feed(text.slice(at, at + piece));
  return reader.finish();
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

// Parts that are not wanted leave no trace, reading ends with the last one that is, and what is counted is empty.
function checkWanted() {
  const text = "<r><a><b>1</b></a><n><a><b>2</b></a></n><n/><l>3<i>4</i><i/><i j='k'><o/></i></l><c x='&lt;'/><a>";
  const failures = [];
  for (const piece of [1, 7, text.length]) {
    const reader = new TreeReader({ parts: ["a", "l", "c"], counted: ["l"] });
    for (let at = 0; at < text.length; at += piece) reader.feed(text.slice(at, at + piece));
    const xpath = new XPath(reader.finish());
    const expression = "concat(count(//*), '|', /r/a/b, count(r/l/i), count(r/l/i/@j), /r/c/@x, '|', r)";
    const got = xpath.text(expression, { node: 0, position: 1, last: 1, variables: new Map() });
    if (!reader.isDone || got !== "8|130<|13") failures.push(`what is wanted, ${piece} at a time: got ${got}`);
  }
  return failures;
}

function checkPair(pair, sheets, documents, failures) {
  const sheet = new StyleSheet(parse(sheets[pair.sheet]));
  const source = treeOf(documents[pair.document]);
  const got = normalised(sheet.transform(source));
  const expected = normalised(new DOMParser().parseFromString(pair.expected, "text/html").body);
  const [, content] = /^<body>\n([^]*)\n<\/>$/.exec(expected);
  if (got !== content) failures.push(`${pair.sheet} over ${pair.document}: ${firstDifference(got, content)}`);
  return checkRows(sheet, source, got);
}

function checkAll({ sheets, documents, pairs, refused, damaged }) {
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
      new StyleSheet(parse(text)).transform(treeOf("<a><b href='javascript:x'/></a>"));
      failures.push(`${name}: was not refused`);
    } catch (error) {
      if (!(error instanceof Error)) failures.push(`${name}: ${error}`);
    }
  }
  for (const [name, text] of Object.entries(damaged)) {
    for (const piece of [1, text.length]) {
      try {
        treeOf(text, piece);
        failures.push(`${name}, ${piece} at a time: was read`);
      } catch (error) {
        if (!(error instanceof DamagedDocument)) failures.push(`${name}: ${error}`);
      }
    }
  }
  failures.push(...checkWanted(), ...checkValues());
  return { pairs: pairs.length, refused: Object.keys(refused).length, bodies, failures };
}

const result = document.createElement("pre");
result.id = "result";
result.textContent = JSON.stringify(checkAll(JSON.parse(document.getElementById("work").textContent)));
document.body.replaceChildren(result);
