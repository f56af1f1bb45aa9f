// XPath 1.0 by the browser's own document.evaluate. It knows neither the variables of a style sheet nor the place of a
// node among those of a for-each, so that both are written into the expression as literals before it is run.

const XPATH_HOLES = /"[^"]*"|'[^']*'|\$[A-Za-z_][\w.-]*|\b(?:position|last)\(\)|[[\]]/g;

// The pieces of an expression: texts, and between them the holes { variable } and { place }. Inside brackets
// position() and last() are those of the step and stay.
function splitExpression(text) {
  const pieces = [];
  let depth = 0;
  let from = 0;
  for (const match of text.matchAll(XPATH_HOLES)) {
    const word = match[0];
    if (word === "[") depth += 1;
    if (word === "]") depth -= 1;
    const isPlace = depth === 0 && word.endsWith("()");
    if (word[0] !== "$" && !isPlace) continue;
    pieces.push(text.slice(from, match.index));
    pieces.push(isPlace ? { place: word.slice(0, -2) } : { variable: word.slice(1) });
    from = match.index + word.length;
  }
  pieces.push(text.slice(from));
  return pieces;
}

// A text as a literal of XPath, which has no way to write both kinds of quotes in one.
function quoteText(text) {
  if (!text.includes("'")) return `'${text}'`;
  if (!text.includes('"')) return `"${text}"`;
  return `concat(${text.split("'").map((part) => `'${part}'`).join(`,"'",`)})`;
}

function quoteNumber(number) {
  if (Number.isNaN(number)) return "(0 div 0)";
  if (!Number.isFinite(number)) return number > 0 ? "(1 div 0)" : "(-1 div 0)";
  // XPath has no exponents.
  const digits = String(number).includes("e") ? number.toFixed(Math.abs(number) < 1 ? 20 : 0) : String(number);
  return `(${digits})`;
}

function quoteValue(value) {
  if (typeof value === "number") return quoteNumber(value);
  if (typeof value === "boolean") return value ? "true()" : "false()";
  return quoteText(String(value));
}

// Evaluates the expressions of one style sheet over one document. A context is { node, position, last, variables }.
class XPathRunner {
  constructor(source) {
    this.source = source;
    this.pieces = new Map();
    this.compiled = new Map();
  }

  string(text, context) {
    return this.run(text, context, XPathResult.STRING_TYPE).stringValue;
  }

  number(text, context) {
    return this.run(text, context, XPathResult.NUMBER_TYPE).numberValue;
  }

  test(text, context) {
    return this.run(text, context, XPathResult.BOOLEAN_TYPE).booleanValue;
  }

  // Nodes in the order of the document.
  nodes(text, context) {
    const found = this.run(text, context, XPathResult.ORDERED_NODE_SNAPSHOT_TYPE);
    const nodes = new Array(found.snapshotLength);
    for (let i = 0; i < nodes.length; i += 1) nodes[i] = found.snapshotItem(i);
    return nodes;
  }

  // The value of a variable: a text, a number or a truth; of nodes the text of the first.
  value(text, context) {
    const result = this.run(text, context, XPathResult.ANY_TYPE);
    if (result.resultType === XPathResult.NUMBER_TYPE) return result.numberValue;
    if (result.resultType === XPathResult.BOOLEAN_TYPE) return result.booleanValue;
    if (result.resultType === XPathResult.STRING_TYPE) return result.stringValue;
    return this.string(text, context);
  }

  run(text, context, type) {
    let pieces = this.pieces.get(text);
    if (!pieces) this.pieces.set(text, (pieces = splitExpression(text)));
    if (pieces.length > 1) return this.source.evaluate(this.fill(pieces, context), context.node, null, type, null);
    let compiled = this.compiled.get(text);
    if (!compiled) this.compiled.set(text, (compiled = this.source.createExpression(text, null)));
    return compiled.evaluate(context.node, type, null);
  }

  fill(pieces, context) {
    return pieces
      .map((piece) => {
        if (typeof piece === "string") return piece;
        if (piece.place) return quoteNumber(context[piece.place]);
        if (!context.variables.has(piece.variable)) throw new Error(`there is no variable $${piece.variable}`);
        return quoteValue(context.variables.get(piece.variable));
      })
      .join("");
  }
}
