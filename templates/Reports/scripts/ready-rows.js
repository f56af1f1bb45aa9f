// The rows of a table that a style sheet made whole, with the same operations as RowSource. Rows of class "group" head
// the rows that follow them; their cells stand under the same columns and hold what the group comes to.
class ReadyRows {
  constructor(table) {
    this.rows = [];
    this.groups = [];
    for (const row of table.tBodies[0].rows) {
      if (row.classList.contains("group")) this.groups.push({ head: row, texts: textsOf(row), members: [] });
      else {
        this.groups.at(-1)?.members.push(this.rows.length);
        this.rows.push(row);
      }
    }
    this.texts = this.rows.map(textsOf);
  }

  get length() {
    return this.rows.length;
  }

  element(index) {
    return this.rows[index];
  }

  text(index, column) {
    return this.texts[index][column] ?? "";
  }

  words(index) {
    return this.texts[index].join("\n");
  }
}

function textsOf(row) {
  return Array.from(row.cells, (cell) => cell.textContent);
}
