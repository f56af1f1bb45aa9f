// The rows of a table, made when they are looked at. A table of a hundred thousand nodes would take the browser minutes
// and gigabytes to lay out; this keeps the nodes of the document, and makes of them the rows in view and, for sorting,
// single cells.

// The for-each that makes all rows of the body of a grid, each row a literal <tr>; null for every other body.
function rowsTemplate(body) {
  if (body.closest("table")?.getAttribute("class") !== "grid") return null;
  const loop = body.firstElementChild;
  if (!loop || body.childElementCount !== 1 || !isInstruction(loop, "for-each")) return null;
  const parts = [...loop.children].filter((part) => !isInstruction(part, "sort"));
  return parts.length === 1 && parts[0].localName === "tr" && !isInstruction(parts[0]) ? loop : null;
}

class RowSource {
  constructor(run, loop, context) {
    this.run = run;
    this.row = loop.lastElementChild;
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
    const cell = this.findCell(this.row, this.context(index), { left: column });
    return cell ? cell.textContent : "";
  }

  // Everything that the document says about the row: what a filter looks in.
  words(index) {
    const node = this.nodes[index];
    let words = "";
    for (const attribute of node.attributes) words += `${attribute.value}\n`;
    // This runs for every row while somebody types: step by step is twice as fast as over the list of children.
    for (let child = node.firstElementChild; child; child = child.nextElementSibling) {
      const value = child.hasAttributes() ? child.getAttribute("Value") : child.textContent;
      if (value) words += `${value}\n`;
    }
    return words;
  }

  findCell(template, context, wanted) {
    for (const child of template.children) {
      if (!isInstruction(child)) {
        if (wanted.left === 0) return this.run.literal(child, context);
        wanted.left -= 1;
        continue;
      }
      const cell = this.findCellIn(child, context, wanted);
      if (cell) return cell;
      if (child.localName === "variable") context = this.run.bind(child, context);
    }
    return null;
  }

  findCellIn(instruction, context, wanted) {
    if (instruction.localName === "if") {
      const isTrue = this.run.xpath.test(attributeOf(instruction, "test"), context);
      return isTrue ? this.findCell(instruction, context, wanted) : null;
    }
    if (instruction.localName !== "for-each") return null;
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
