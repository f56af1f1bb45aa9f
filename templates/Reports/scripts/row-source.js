// The rows of a table, made when they are looked at. A table of a hundred thousand nodes would take the browser minutes
// and gigabytes to lay out; this keeps the nodes of the document, and makes of them the rows in view and, for sorting,
// the texts of single cells.

// The for-each that makes all rows of a body, each row a literal <tr>; null for every other body.
function rowsTemplate(template) {
  const [loop] = template.children;
  if (template.children.length !== 1 || !isInstruction(loop, "for-each")) return null;
  const parts = loop.children.filter((part) => !isInstruction(part, "sort"));
  return parts.length === 1 && parts[0].name === "tr" && !parts[0].isInstruction ? loop : null;
}

class RowSource {
  constructor(run, loop, context) {
    this.run = run;
    this.row = loop.children.at(-1);
    this.variables = context.variables;
    this.nodes = run.nodesOf(loop, context);
  }

  get length() {
    return this.nodes.length;
  }

  context(index) {
    return { node: this.nodes[index], position: index + 1, last: this.nodes.length, variables: this.variables };
  }

  // A new <tr>.
  element(index) {
    return this.run.literal(this.row, this.context(index));
  }

  // The text of one cell, without making the others.
  text(index, column) {
    return this.findCell(this.row, this.context(index), { left: column }) ?? "";
  }

  // Everything that the document says about the row: what a filter looks in. Where children have attributes, their
  // Value says it.
  words(index) {
    const { tree } = this.run;
    const node = this.nodes[index];
    const after = tree.after[node];
    let words = "";
    if (tree.attributes[node]) for (const { value } of tree.attributesOf(node)) words += `${value}\n`;
    for (let child = node + 1; child < after; child = tree.after[child]) {
      words += `${tree.attributes[child] ? (tree.attribute(child, "Value") ?? "") : tree.text(child)}\n`;
    }
    return words;
  }

  // The text of the cell that has `wanted.left` others before it; null when there are no more than `wanted.left`.
  findCell(template, context, wanted) {
    for (const child of template.children) {
      if (typeof child === "string") continue;
      if (!child.isInstruction) {
        if (wanted.left === 0) return this.run.textOf(child, context);
        wanted.left -= 1;
        continue;
      }
      const text = this.findCellIn(child, context, wanted);
      if (text !== null) return text;
      if (child.name === "variable") context = this.run.bind(child, context);
    }
    return null;
  }

  findCellIn(instruction, context, wanted) {
    if (instruction.name === "if") {
      const isTrue = this.run.xpath.test(attributeOf(instruction, "test"), context);
      return isTrue ? this.findCell(instruction, context, wanted) : null;
    }
    if (instruction.name !== "for-each") return null;
    const nodes = this.run.nodesOf(instruction, context);
    // A for-each in a row makes one cell of each node.
    if (wanted.left >= nodes.length) {
      wanted.left -= nodes.length;
      return null;
    }
    const node = nodes[wanted.left];
    const inner = { node, position: wanted.left + 1, last: nodes.length, variables: context.variables };
    return this.findCell(instruction, inner, { left: 0 });
  }
}
