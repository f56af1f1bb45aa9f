// Runs a style sheet over a document: the part of XSLT 1.0 that docs/html-report.md lists, and an error for the rest.
//
// A style sheet comes from the report's folder, and a document from a capture that anybody may have sent. So elements
// and attributes are taken from lists, and what comes from a document becomes text, or the value of an attribute that
// is only ever read as text.

const XSL_NAMESPACE = "http://www.w3.org/1999/XSL/Transform";
const DEEPEST_CALL = 60;

const KNOWN_ELEMENTS = new Set(
  ("article section header footer div span p h1 h2 h3 h4 ul ol li dl dt dd table caption thead tbody tr th td " +
    "figure figcaption strong em small code abbr details summary img a").split(" "),
);
const FIXED_ATTRIBUTES = new Set(
  "class id title alt scope colspan rowspan role lang hidden href src width height open".split(" "),
);
const FREE_ATTRIBUTES = new Set(["class", "title", "alt", "colspan"]);
const FIXED_ADDRESSES = /^(?:#[\w-]+|[A-Za-z]+\.htm|Images\/[A-Za-z_]+\.gif)$/;

function checkAttribute(name, value, isFixed) {
  if (name.startsWith("data-") || name.startsWith("aria-")) return;
  const isKnown = (isFixed ? FIXED_ATTRIBUTES : FREE_ATTRIBUTES).has(name);
  const isAddress = name === "href" || name === "src";
  if (!isKnown || (isAddress && !FIXED_ADDRESSES.test(value))) {
    throw new Error(`the attribute ${name} may not be "${value}"`);
  }
}

function isInstruction(part, name) {
  return typeof part !== "string" && part.isInstruction && (!name || part.name === name);
}

function attributeOf(instruction, name) {
  const value = instruction.attributes.get(name);
  if (value === undefined) throw new Error(`xsl:${instruction.name} needs the attribute ${name}`);
  return value;
}

// A part of a style sheet as plain data, which are quicker to walk than the elements of a document: a text, or
// { name, isInstruction, attributes, children }. White space between elements means nothing, apart from that in xsl:text.
function readPart(element) {
  const isKnown = element.namespaceURI === XSL_NAMESPACE;
  if (!isKnown && (element.namespaceURI || !KNOWN_ELEMENTS.has(element.localName))) {
    throw new Error(`<${element.nodeName}> may not be made`);
  }
  const name = element.localName;
  const attributes = new Map(Array.from(element.attributes, (attribute) => [attribute.name, attribute.value]));
  const keepsSpace = isKnown && name === "text";
  const children = [];
  for (const child of element.childNodes) {
    if (child.nodeType === Node.ELEMENT_NODE) children.push(readPart(child));
    else if (child.nodeType !== Node.TEXT_NODE && child.nodeType !== Node.CDATA_SECTION_NODE) continue;
    else if (keepsSpace || !/^[ \t\r\n]*$/.test(child.data)) children.push(child.data);
  }
  return { name, isInstruction: isKnown, attributes, children };
}

class StyleSheet {
  constructor(parsed) {
    const root = parsed.documentElement;
    if (root?.namespaceURI !== XSL_NAMESPACE || root.localName !== "stylesheet") throw new Error("this is no style sheet");
    this.templates = new Map();
    for (const part of readPart(root).children) {
      if (isInstruction(part, "output")) continue;
      if (!isInstruction(part, "template")) throw new Error(`<${part.name ?? part}> may not stand here`);
      const match = part.attributes.get("match");
      if (match !== undefined && match !== "/") throw new Error(`the pattern ${match} is not known`);
      this.templates.set(match ?? attributeOf(part, "name"), part);
    }
    if (!this.templates.has("/")) throw new Error("there is no template for /");
  }

  // What the style sheet makes of a tree, as a fragment of this page. When `onRows` is given, bodies of grids of which
  // all rows come from one for-each stay empty, and it is called with the body and the source of its rows.
  transform(tree, onRows = null) {
    const run = new Transformation(this, tree, onRows);
    const fragment = document.createDocumentFragment();
    const context = { node: 0, position: 1, last: 1, variables: new Map() };
    run.instantiate(this.templates.get("/"), context, fragment);
    return fragment;
  }
}

// Stands in the place of an element of which the text alone is wanted.
class TextKeeper {
  nodeType = Node.ELEMENT_NODE;
  text = "";

  append(part) {
    this.text += typeof part === "string" ? part : part.textContent;
  }

  setAttribute() {}
}

class Transformation {
  constructor(sheet, tree, onRows) {
    this.sheet = sheet;
    this.tree = tree;
    this.xpath = new XPath(tree);
    this.onRows = onRows;
    this.depth = 0;
  }

  // Runs the children of `template` and appends what comes out to `parent`.
  instantiate(template, context, parent) {
    for (const child of template.children) {
      if (typeof child === "string") parent.append(child);
      else if (!child.isInstruction) parent.append(this.literal(child, context, parent));
      else if (child.name === "variable") context = this.bind(child, context);
      else if (child.name !== "param" && child.name !== "sort") this.perform(child, context, parent);
    }
  }

  perform(instruction, context, parent) {
    const action = INSTRUCTIONS[instruction.name];
    if (!action) throw new Error(`xsl:${instruction.name} is not known here`);
    action(this, instruction, context, parent);
  }

  literal(template, context, parent = null) {
    const element = document.createElement(template.name);
    for (const [name, value] of template.attributes) this.setAttribute(element, name, value, context);
    const isGrid = this.onRows && template.name === "tbody" && parent?.className === "grid";
    const loop = isGrid ? rowsTemplate(template) : null;
    if (loop) this.onRows(element, new RowSource(this, loop, context));
    else this.instantiate(template, context, element);
    return element;
  }

  // {...} in the value of an attribute stands for what the expression gives, {{ and }} for themselves.
  setAttribute(element, name, pattern, context) {
    let isFixed = true;
    const value = pattern.replace(/\{\{|\}\}|\{((?:[^}"']|"[^"]*"|'[^']*')*)\}/g, (word, expression) => {
      if (expression === undefined) return word[0];
      isFixed = false;
      return this.xpath.text(expression, context);
    });
    checkAttribute(name, value, isFixed);
    element.setAttribute(name, value);
  }

  bind(variable, context) {
    const variables = new Map(context.variables);
    variables.set(attributeOf(variable, "name"), this.valueOf(variable, context));
    return { ...context, variables };
  }

  // The value of a variable or parameter, by its expression or by the text of its content.
  valueOf(element, context) {
    const select = element.attributes.get("select");
    return select === undefined ? this.textOf(element, context) : this.xpath.value(select, context);
  }

  // The text of what the children of `template` make.
  textOf(template, context) {
    const keeper = new TextKeeper();
    this.instantiate(template, context, keeper);
    return keeper.text;
  }

  call(name, context, parameters, parent) {
    const template = this.sheet.templates.get(name);
    if (!template) throw new Error(`there is no template ${name}`);
    if (this.depth === DEEPEST_CALL) throw new Error(`the template ${name} calls itself without end`);
    const variables = new Map();
    for (const child of template.children) {
      if (!isInstruction(child, "param")) break;
      const parameter = attributeOf(child, "name");
      variables.set(parameter, parameters.get(parameter) ?? this.valueOf(child, { ...context, variables }));
    }
    this.depth += 1;
    this.instantiate(template, { ...context, variables }, parent);
    this.depth -= 1;
  }

  // The nodes that a for-each visits, in its order.
  nodesOf(loop, context) {
    const nodes = this.xpath.nodes(attributeOf(loop, "select"), context);
    const sort = loop.children[0];
    if (sort === undefined || !isInstruction(sort, "sort")) return nodes;
    if (sort.attributes.get("data-type") !== "number") throw new Error("xsl:sort sorts numbers alone");
    const select = sort.attributes.get("select") ?? ".";
    const sign = sort.attributes.get("order") === "descending" ? -1 : 1;
    const keyed = nodes.map((node, i) => ({
      node,
      key: this.xpath.number(select, { node, position: i + 1, last: nodes.length, variables: context.variables }),
    }));
    // What is no number comes before all numbers, as XSLT 1.0 (section 10) has it.
    const order = (a, b) => (Number.isNaN(a) ? (Number.isNaN(b) ? 0 : -1) : Number.isNaN(b) ? 1 : a - b);
    keyed.sort((a, b) => sign * order(a.key, b.key));
    return keyed.map((entry) => entry.node);
  }
}

const INSTRUCTIONS = {
  "value-of": (run, instruction, context, parent) => {
    const text = run.xpath.text(attributeOf(instruction, "select"), context);
    if (text !== "") parent.append(text);
  },

  text: (run, instruction, context, parent) => {
    parent.append(instruction.children.join(""));
  },

  if: (run, instruction, context, parent) => {
    if (run.xpath.test(attributeOf(instruction, "test"), context)) run.instantiate(instruction, context, parent);
  },

  choose: (run, instruction, context, parent) => {
    for (const branch of instruction.children) {
      if (isInstruction(branch, "otherwise") || run.xpath.test(attributeOf(branch, "test"), context)) {
        run.instantiate(branch, context, parent);
        return;
      }
    }
  },

  "for-each": (run, instruction, context, parent) => {
    const nodes = run.nodesOf(instruction, context);
    nodes.forEach((node, i) => {
      run.instantiate(
        instruction,
        { node, position: i + 1, last: nodes.length, variables: context.variables },
        parent,
      );
    });
  },

  attribute: (run, instruction, context, parent) => {
    if (parent.nodeType !== Node.ELEMENT_NODE) throw new Error("xsl:attribute stands outside of an element");
    const name = attributeOf(instruction, "name");
    const value = run.textOf(instruction, context);
    checkAttribute(name, value, false);
    parent.setAttribute(name, value);
  },

  "call-template": (run, instruction, context, parent) => {
    const parameters = new Map();
    for (const child of instruction.children) {
      if (!isInstruction(child, "with-param")) throw new Error(`<${child.name ?? child}> may not stand here`);
      parameters.set(attributeOf(child, "name"), run.valueOf(child, context));
    }
    run.call(attributeOf(instruction, "name"), context, parameters, parent);
  },
};
