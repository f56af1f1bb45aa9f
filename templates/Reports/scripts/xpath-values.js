// The values of XPath 1.0 and what its functions make of them: texts, numbers, truths, and arrays of nodes in the order
// of the document.

// XPath 1.0, section 4.2: digits without an exponent.
function numberText(number) {
  if (number === 0) return "0";
  const text = String(number);
  if (!text.includes("e")) return text;
  return Math.abs(number) < 1 ? number.toFixed(20).replace(/0+$/, "") : BigInt(number).toString();
}

// XPath 1.0, section 4.4.
function textNumber(text) {
  return /^[ \t\r\n]*-?(?:\d+(?:\.\d*)?|\.\d+)[ \t\r\n]*$/.test(text) ? Number(text) : Number.NaN;
}

class XPathValues {
  constructor(tree) {
    this.tree = tree;
  }

  text(value) {
    if (typeof value === "string") return value;
    if (Array.isArray(value)) return value.length === 0 ? "" : this.tree.text(value[0]);
    return typeof value === "number" ? numberText(value) : String(value);
  }

  number(value) {
    if (typeof value === "number") return value;
    return typeof value === "boolean" ? Number(value) : textNumber(this.text(value));
  }

  truth(value) {
    if (typeof value === "number") return value !== 0 && !Number.isNaN(value);
    return typeof value === "object" ? value.length > 0 : Boolean(value);
  }

  // XPath 1.0, section 3.4: nodes compare true when one of them does.
  compare(operator, a, b) {
    if (Array.isArray(a) && typeof b !== "boolean") {
      return a.some((node) => this.compare(operator, this.tree.text(node), b));
    }
    if (Array.isArray(b) && typeof a !== "boolean") {
      return b.some((node) => this.compare(operator, a, this.tree.text(node)));
    }
    if (operator === "=") return this.isEqual(a, b);
    if (operator === "!=") return !this.isEqual(a, b);
    const [left, right] = [this.number(a), this.number(b)];
    if (operator === "<") return left < right;
    if (operator === ">") return left > right;
    return operator === "<=" ? left <= right : left >= right;
  }

  isEqual(a, b) {
    if (typeof a === "boolean" || typeof b === "boolean") return this.truth(a) === this.truth(b);
    if (typeof a === "number" || typeof b === "number") return this.number(a) === this.number(b);
    return a === b;
  }

  calculate(operator, a, b) {
    const [left, right] = [this.number(a), this.number(b)];
    if (operator === "+") return left + right;
    if (operator === "-") return left - right;
    if (operator === "*") return left * right;
    return operator === "div" ? left / right : left % right;
  }
}

// By name: the least and the most arguments, and what is called with the values, the context and these.
const XPATH_FUNCTIONS = {
  position: [0, 0, (values, context) => context.position],
  last: [0, 0, (values, context) => context.last],
  true: [0, 0, () => true],
  false: [0, 0, () => false],
  count: [1, 1, (values, context, nodes) => needNodes(nodes).length],
  sum: [1, 1, (values, context, nodes) => needNodes(nodes).reduce((sum, node) => sum + values.number([node]), 0)],
  name: [0, 1, (values, context, nodes = [context.node]) => (nodes.length ? values.tree.nameOf(nodes[0]) : "")],
  string: [0, 1, (values, context, value = [context.node]) => values.text(value)],
  number: [0, 1, (values, context, value = [context.node]) => values.number(value)],
  boolean: [1, 1, (values, context, value) => values.truth(value)],
  not: [1, 1, (values, context, value) => !values.truth(value)],
  floor: [1, 1, (values, context, value) => Math.floor(values.number(value))],
  ceiling: [1, 1, (values, context, value) => Math.ceil(values.number(value))],
  round: [1, 1, (values, context, value) => Math.round(values.number(value))],
  concat: [2, 99, (values, context, ...parts) => parts.map((part) => values.text(part)).join("")],
  contains: [2, 2, (values, context, text, part) => values.text(text).includes(values.text(part))],
  "starts-with": [2, 2, (values, context, text, part) => values.text(text).startsWith(values.text(part))],
  "substring-before": [2, 2, (values, context, text, part) => splitText(values.text(text), values.text(part))[0]],
  "substring-after": [2, 2, (values, context, text, part) => splitText(values.text(text), values.text(part))[1]],
  substring: [2, 3, (values, context, text, from, length = Number.POSITIVE_INFINITY) => {
    const first = Math.round(values.number(from));
    const end = first + Math.round(values.number(length));
    return Array.from(values.text(text)).filter((_, i) => i + 1 >= first && i + 1 < end).join("");
  }],
  "string-length": [0, 1, (values, context, text = [context.node]) => Array.from(values.text(text)).length],
  "normalize-space": [0, 1, (values, context, text = [context.node]) => {
    return values.text(text).split(/[ \t\r\n]+/).filter(Boolean).join(" ");
  }],
  translate: [3, 3, (values, context, text, from, to) => {
    const [source, target] = [Array.from(values.text(from)), Array.from(values.text(to))];
    const replace = (letter) => (source.includes(letter) ? (target[source.indexOf(letter)] ?? "") : letter);
    return Array.from(values.text(text), replace).join("");
  }],
};

function needNodes(value) {
  if (!Array.isArray(value)) throw new Error("nodes are needed, and here are none");
  return value;
}

// What stands before and behind the first `part`; both empty without one.
function splitText(text, part) {
  const at = text.indexOf(part);
  return at < 0 ? ["", ""] : [text.slice(0, at), text.slice(at + part.length)];
}
