// XPath 1.0 over a Tree: expressions become functions of a context, which is { node, position, last, variables }.
// Variables hold texts, numbers and truths. A function that gives nodes may have `first`, which gives the first alone or
// -1, and `exists`, which tells whether there is one: they spare the others. One that compares a child with a variable
// has `lookUp`, so that it need not look at all.

const XPATH_TOKEN = new RegExp(
  "\\s*(?:" +
    "(?<number>\\d+(?:\\.\\d*)?|\\.\\d+)|" +
    "(?<text>\"[^\"]*\"|'[^']*')|" +
    "\\$(?<variable>[\\p{L}_][\\p{L}\\p{N}_.-]*)|" +
    "(?<sign>::|//|\\.\\.|[<>!]=|[/.@()[\\],|+=<>*-])|" +
    "(?<name>[\\p{L}_](?:[\\p{L}\\p{N}_.-]|:(?!:))*))",
  "uy",
);
// From those that bind least to those that bind most.
const XPATH_OPERATORS = [["or"], ["and"], ["=", "!="], ["<", "<=", ">", ">="], ["+", "-"], ["*", "div", "mod"]];
const DEEPEST_EXPRESSION = 100;

function splitExpression(text) {
  const tokens = [];
  const end = text.trimEnd().length;
  XPATH_TOKEN.lastIndex = 0;
  while (XPATH_TOKEN.lastIndex < end) {
    const found = XPATH_TOKEN.exec(text);
    if (!found) throw new Error(`"${text}" is no expression`);
    const [kind, value] = Object.entries(found.groups).find(([, part]) => part !== undefined);
    tokens.push({ kind, value });
  }
  return tokens;
}

// Makes functions of expressions over one tree, each once.
class XPath {
  constructor(tree) {
    this.tree = tree;
    this.values = new XPathValues(tree);
    this.compiled = new Map();
    this.indices = new Map();
  }

  // The children of that name (by its number) that have a child `key` of that text. The first question about children of
  // an element makes an index of all, as whoever looks for a row by its address looks for others, too.
  lookUp(element, name, key, text) {
    const about = `${element} ${name} ${key}`;
    let index = this.indices.get(about);
    if (!index) {
      this.indices.set(about, (index = new Map()));
      for (const child of XPATH_AXES.child(this.tree, element, name)) {
        for (const value of new Set(XPATH_AXES.child(this.tree, child, key).map((node) => this.tree.text(node)))) {
          if (!index.has(value)) index.set(value, []);
          index.get(value).push(child);
        }
      }
    }
    return index.get(text) ?? [];
  }

  text(text, context) {
    const run = this.compile(text);
    if (!run.first) return this.values.text(run(context));
    const node = run.first(context);
    return node === -1 ? "" : this.tree.text(node);
  }

  number(text, context) {
    return textNumber(this.text(text, context));
  }

  test(text, context) {
    const run = this.compile(text);
    return run.exists ? run.exists(context) : this.values.truth(run(context));
  }

  nodes(text, context) {
    return needNodes(this.compile(text)(context));
  }

  // The value of a variable; of nodes the text of the first.
  value(text, context) {
    const value = this.compile(text)(context);
    return Array.isArray(value) ? this.values.text(value) : value;
  }

  compile(text) {
    let run = this.compiled.get(text);
    if (!run) this.compiled.set(text, (run = new XPathParser(this, text).parse()));
    return run;
  }
}

class XPathParser {
  constructor(xpath, text) {
    this.xpath = xpath;
    this.tree = xpath.tree;
    this.values = xpath.values;
    this.whole = text;
    this.tokens = splitExpression(text);
    this.at = 0;
    this.depth = 0;
  }

  parse() {
    const run = this.expression();
    if (this.at < this.tokens.length) this.fail();
    return run;
  }

  fail() {
    throw new Error(`"${this.whole}" is no expression`);
  }

  peek(value, ahead = 0) {
    const token = this.tokens[this.at + ahead];
    return token !== undefined && token.value === value && (token.kind === "sign" || token.kind === "name");
  }

  peekKind(kind, ahead = 0) {
    return this.tokens[this.at + ahead]?.kind === kind;
  }

  take() {
    this.at += 1;
    return this.tokens[this.at - 1]?.value ?? this.fail();
  }

  skip(value) {
    if (!this.peek(value)) return false;
    this.at += 1;
    return true;
  }

  need(value) {
    if (!this.skip(value)) this.fail();
  }

  expression(level = 0) {
    if (level === XPATH_OPERATORS.length) return this.negated();
    if (level === 0 && (this.depth += 1) > DEEPEST_EXPRESSION) this.fail();
    let left = this.expression(level + 1);
    for (;;) {
      const operator = XPATH_OPERATORS[level].find((sign) => this.peek(sign));
      if (!operator) break;
      this.take();
      left = this.combine(operator, left, this.expression(level + 1));
    }
    if (level === 0) this.depth -= 1;
    return left;
  }

  combine(operator, a, b) {
    const { values } = this;
    if (operator === "or") return (context) => values.truth(a(context)) || values.truth(b(context));
    if (operator === "and") return (context) => values.truth(a(context)) && values.truth(b(context));
    if (/[=<>]/.test(operator)) {
      const run = (context) => values.compare(operator, a(context), b(context));
      if (operator === "=" && a.child !== undefined && b.isFixed) run.lookUp = { key: a.child, value: b };
      return run;
    }
    return (context) => values.calculate(operator, a(context), b(context));
  }

  negated() {
    let signs = 0;
    while (this.skip("-")) signs += 1;
    const run = this.union();
    if (signs === 0) return run;
    return (context) => (signs % 2 ? -1 : 1) * this.values.number(run(context));
  }

  union() {
    const runs = [this.path()];
    while (this.skip("|")) runs.push(this.path());
    if (runs.length === 1) return runs[0];
    return (context) => inDocumentOrder(this.tree, runs.flatMap((run) => needNodes(run(context))));
  }

  path() {
    if (this.peek("/") || this.peek("//") || !this.isPrimary()) return this.locationPath();
    const primary = this.primary();
    const predicates = this.predicates();
    const steps = this.furtherSteps();
    if (predicates.length === 0 && steps.length === 0) return primary;
    return (context) => {
      const nodes = needNodes(primary(context));
      return this.walk(keepMatching(nodes, predicates, context), steps, context);
    };
  }

  isPrimary() {
    if (["number", "text", "variable"].some((kind) => this.peekKind(kind)) || this.peek("(")) return true;
    return this.peekKind("name") && this.peek("(", 1) && !this.peek("node");
  }

  primary() {
    if (this.skip("(")) {
      const run = this.expression();
      this.need(")");
      return run;
    }
    const { kind } = this.tokens[this.at];
    const value = this.take();
    if (kind === "number") return () => Number(value);
    if (kind === "text") return () => value.slice(1, -1);
    if (kind === "name") return this.call(value);
    const run = ({ variables }) => {
      if (!variables.has(value)) throw new Error(`there is no variable $${value}`);
      return variables.get(value);
    };
    run.isFixed = true; // does not depend on the node
    return run;
  }

  call(name) {
    if (!Object.hasOwn(XPATH_FUNCTIONS, name)) throw new Error(`the function ${name}() is not known`);
    const [least, most, action] = XPATH_FUNCTIONS[name];
    const runs = [];
    this.need("(");
    while (!this.skip(")")) {
      if (runs.length > 0) this.need(",");
      runs.push(this.expression());
    }
    if (runs.length < least || runs.length > most) throw new Error(`${name}() has ${runs.length} arguments`);
    return (context) => action(this.values, context, ...runs.map((run) => run(context)));
  }

  locationPath() {
    const isAbsolute = this.peek("/") || this.peek("//");
    let steps = [];
    if (!isAbsolute) steps = [this.step(), ...this.furtherSteps()];
    else if (this.peek("//") || this.isStep(1)) steps = this.furtherSteps();
    else this.take();
    const start = ({ node }) => (isAbsolute ? 0 : node);
    const run = (context) => this.walk([start(context)], steps, context);
    run.exists = (context) => this.leads(start(context), steps, context);
    if (!isAbsolute && steps.length === 1 && steps[0].first) {
      run.first = ({ node }) => steps[0].first(node);
      if (typeof steps[0].test === "number") run.child = steps[0].test;
    }
    return run;
  }

  isStep(ahead) {
    return this.peekKind("name", ahead) || ["*", "@", ".", ".."].some((sign) => this.peek(sign, ahead));
  }

  furtherSteps() {
    const steps = [];
    for (;;) {
      const isDeep = this.skip("//");
      if (!isDeep && !this.skip("/")) return steps;
      const step = this.step();
      if (isDeep && step.first && typeof step.test === "number") steps.push({ axis: XPATH_AXES.descendant, test: step.test, predicates: [] });
      else if (isDeep) steps.push({ axis: XPATH_AXES["descendant-or-self"], test: null, predicates: [] }, step);
      else steps.push(step);
    }
  }

  step() {
    if (this.skip(".")) return { axis: XPATH_AXES.self, test: null, predicates: [] };
    if (this.skip("..")) return { axis: XPATH_AXES.parent, test: null, predicates: [] };
    let axis = "child";
    if (this.skip("@")) axis = "attribute";
    else if (this.peekKind("name") && this.peek("::", 1)) {
      axis = this.take();
      this.need("::");
    }
    if (!Object.hasOwn(XPATH_AXES, axis)) throw new Error(`the axis ${axis} is not known`);
    const test = this.nodeTest(axis);
    const step = { axis: XPATH_AXES[axis], test, predicates: this.predicates() };
    step.isAhead = ["child", "attribute", "descendant"].includes(axis);
    if (test === null || step.predicates.length > 0) return step;
    if (axis === "child") step.first = (node) => (typeof node === "number" ? this.tree.firstChild(node, test) : -1);
    if (axis === "attribute") step.first = (node) => XPATH_AXES.attribute(this.tree, node, test)[0] ?? -1;
    return step;
  }

  // The name that nodes need: a number for elements, a text for attributes; null for any.
  nodeTest(axis) {
    if (this.skip("*")) return null;
    if (!this.peekKind("name")) this.fail();
    const name = this.take();
    if (name === "node" && this.skip("(")) {
      this.need(")");
      return null;
    }
    return axis === "attribute" ? name : (this.tree.names.get(name) ?? -1);
  }

  predicates() {
    const predicates = [];
    while (this.skip("[")) {
      predicates.push(this.expression());
      this.need("]");
    }
    return predicates;
  }

  // The nodes that a step leads to from one.
  near(node, { axis, test, predicates }, context) {
    const [first, ...others] = predicates;
    if (first?.lookUp && axis === XPATH_AXES.child && typeof node === "number" && test !== null) {
      const value = first.lookUp.value(context);
      if (typeof value === "string") {
        return keepMatching(this.xpath.lookUp(node, test, first.lookUp.key, value), others, context);
      }
    }
    return keepMatching(axis(this.tree, node, test), predicates, context);
  }

  walk(nodes, steps, context) {
    for (const step of steps) {
      // What is ahead of one node is in order.
      if (nodes.length === 1 && step.isAhead) nodes = this.near(nodes[0], step, context);
      else nodes = inDocumentOrder(this.tree, nodes.flatMap((node) => this.near(node, step, context)));
    }
    return nodes;
  }

  // Whether the steps from `place` on lead from the node to any, without looking for all.
  leads(node, steps, context, place = 0) {
    if (place === steps.length) return true;
    const step = steps[place];
    if (step.first && place + 1 === steps.length) return step.first(node) !== -1;
    return this.near(node, step, context).some((next) => this.leads(next, steps, context, place + 1));
  }
}

// The nodes that every predicate lets through; a number is a place among those that the ones before it left.
function keepMatching(nodes, predicates, { variables }) {
  for (const predicate of predicates) {
    nodes = nodes.filter((node, i) => {
      const value = predicate({ node, position: i + 1, last: nodes.length, variables });
      if (typeof value === "number") return value === i + 1;
      return Array.isArray(value) ? value.length > 0 : Boolean(value);
    });
  }
  return nodes;
}

function inDocumentOrder(tree, nodes) {
  const isOrdered = nodes.every((node, i) => i === 0 || tree.order(nodes[i - 1]) < tree.order(node));
  if (isOrdered) return nodes;
  const byOrder = new Map(nodes.map((node) => [tree.order(node), node]));
  return Array.from(byOrder.keys()).sort((a, b) => a - b).map((order) => byOrder.get(order));
}

function matchesTest(tree, node, test) {
  return test === null ? node !== 0 : typeof node === "number" && tree.name[node] === test;
}

function within(tree, first, after, test, next) {
  const found = [];
  for (let node = first; node < after; node = next(node)) {
    if (matchesTest(tree, node, test)) found.push(node);
  }
  return found;
}

// The nodes that an axis leads to, those that are near first. A node test of null is met by any.
const XPATH_AXES = {
  child: (tree, node, test) =>
    typeof node === "number" ? within(tree, node + 1, tree.after[node], test, (child) => tree.after[child]) : [],
  descendant: (tree, node, test) =>
    typeof node === "number" ? within(tree, node + 1, tree.after[node], test, (inner) => inner + 1) : [],
  "descendant-or-self": (tree, node, test) => {
    const self = XPATH_AXES.self(tree, node, test);
    return self.concat(XPATH_AXES.descendant(tree, node, test));
  },
  self: (tree, node, test) => (test === null || matchesTest(tree, node, test) ? [node] : []),
  parent: (tree, node, test) => {
    const parent = typeof node === "number" ? tree.parent[node] : node.owner;
    return parent >= 0 && (test === null || matchesTest(tree, parent, test)) ? [parent] : [];
  },
  ancestor: (tree, node, test) => {
    const found = [];
    for (let [at] = XPATH_AXES.parent(tree, node, null); at > 0; at = tree.parent[at]) {
      if (matchesTest(tree, at, test)) found.push(at);
    }
    return found;
  },
  "following-sibling": (tree, node, test) =>
    node > 0 ? within(tree, tree.after[node], tree.after[tree.parent[node]], test, (next) => tree.after[next]) : [],
  "preceding-sibling": (tree, node, test) => {
    const siblings = node > 0 ? within(tree, tree.parent[node] + 1, node, test, (next) => tree.after[next]) : [];
    return siblings.reverse();
  },
  attribute: (tree, node, test) => {
    if (typeof node !== "number") return [];
    if (test === null) return tree.attributesOf(node);
    const value = tree.attribute(node, test);
    return value === null ? [] : [{ owner: node, place: 0, name: test, value }];
  },
};
