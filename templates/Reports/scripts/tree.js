// A document of a report, as a tree that a browser's own would be too large for: a hundred thousand nodes are two million
// elements, of which a document object model takes ten seconds and a gigabyte. Here an element is a number, its place in
// the order of the document; what is known of it stands in columns, and its text stays in the text of the document.
//
// Element 0 is the document itself. An attribute that an expression selects is an object { owner, place, name, value }.

const TAGS = /<!-{2}[^]*?-->|<\?[^]*?\?>|<!\[CDATA\[([^]*?)\]\]>|<(?:"[^"]*"|'[^']*'|[^"'>])*>/g;
const REFERENCES = /&(?:#x([0-9A-Fa-f]+)|#(\d+)|(lt|gt|amp|quot|apos));/g;
const ATTRIBUTES = /([^\s=]+)\s*=\s*(?:"([^"]*)"|'([^']*)')/g;
const ENTITIES = { lt: "<", gt: ">", amp: "&", quot: '"', apos: "'" };

function isSpace(code) {
  return code === 32 || code === 10 || code === 9 || code === 13;
}

function dereference(text) {
  if (!text.includes("&")) return text;
  return text.replace(REFERENCES, (_, hex, decimal, name) => {
    if (name) return ENTITIES[name];
    const code = hex ? Number.parseInt(hex, 16) : Number(decimal);
    return code <= 0x10ffff ? String.fromCodePoint(code) : "\ufffd";
  });
}

// The text between `<...>`; that of CDATA as it is.
function withoutTags(text) {
  let plain = "";
  let from = 0;
  for (const match of text.matchAll(TAGS)) {
    plain += dereference(text.slice(from, match.index)) + (match[1] ?? "");
    from = match.index + match[0].length;
  }
  return plain + dereference(text.slice(from));
}

class Tree {
  constructor() {
    this.names = new Map(); // numbers of names
    this.nameTexts = [];
    this.size = 0;
    this.room = 0;
    this.columns = {
      name: Uint16Array,
      parent: Int32Array,
      after: Int32Array, // the first element behind this one and all in it
      attributes: Uint32Array, // where they stand in the text; 0 for none
      begin: Uint32Array, // where the content stands in the text
      end: Uint32Array,
    };
    for (const [column, Type] of Object.entries(this.columns)) this[column] = new Type(0);
    // The text, in pieces, and where each begins.
    this.pieces = [];
    this.offsets = [];
    this.length = 0;
    this.piece = 0; // the one that was looked at last
    this.add(this.nameNumber(""), -1);
  }

  // --- making one ---

  nameNumber(name) {
    let number = this.names.get(name);
    if (number === undefined) {
      number = this.names.size;
      if (number > 0xffff) throw new Error("too many names");
      this.names.set(name, number);
      this.nameTexts.push(name);
    }
    return number;
  }

  add(name, parent) {
    if (this.size === this.room) this.grow();
    const element = this.size;
    this.size += 1;
    this.name[element] = name;
    this.parent[element] = parent;
    return element;
  }

  grow() {
    this.room = Math.max(1024, this.room * 2);
    for (const [column, Type] of Object.entries(this.columns)) {
      const old = this[column];
      this[column] = new Type(this.room);
      this[column].set(old);
    }
  }

  addText(piece) {
    this.pieces.push(piece);
    this.offsets.push(this.length);
    this.length += piece.length;
  }

  // --- reading it ---

  slice(begin, end) {
    let at = this.piece;
    if (begin < this.offsets[at] || begin >= this.offsets[at] + this.pieces[at].length) at = this.pieceOf(begin);
    this.piece = at;
    const offset = this.offsets[at];
    let text = this.pieces[at].slice(begin - offset, end - offset);
    for (at += 1; at < this.pieces.length && this.offsets[at] < end; at += 1) {
      text += this.pieces[at].slice(0, end - this.offsets[at]);
    }
    return text;
  }

  pieceOf(place) {
    let low = 0;
    let high = this.pieces.length - 1;
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (this.offsets[middle] <= place) low = middle;
      else high = middle - 1;
    }
    return low;
  }

  // The text of a node as XPath has it: that of all elements in it together.
  text(node) {
    if (typeof node !== "number") return node.value;
    const begin = this.begin[node];
    const end = this.end[node];
    if (begin === end) return "";
    const text = this.slice(begin, end);
    return this.after[node] === node + 1 && !text.includes("<") ? dereference(text) : withoutTags(text);
  }

  nameOf(node) {
    return typeof node === "number" ? this.nameTexts[this.name[node]] : node.name;
  }

  // The first child of that name (by its number), or -1.
  firstChild(element, name) {
    const after = this.after[element];
    for (let child = element + 1; child < after; child = this.after[child]) {
      if (this.name[child] === name) return child;
    }
    return -1;
  }

  attributesOf(element) {
    const at = this.attributes[element];
    if (!at) return [];
    const text = this.slice(at, this.begin[element] - 1);
    return Array.from(text.matchAll(ATTRIBUTES), ([, name, double, single], place) => {
      return { owner: element, place, name, value: dereference(double ?? single) };
    });
  }

  // The value of an attribute; null without.
  attribute(element, name) {
    const at = this.attributes[element];
    const text = at ? this.slice(at, this.begin[element] - 1) : "";
    for (let from = 0; ; ) {
      const equals = text.indexOf("=", from);
      if (equals < 0) return null;
      const begin = equals + 1 + (isSpace(text.charCodeAt(equals + 1)) ? text.slice(equals + 1).search(/\S/) : 0);
      const end = text.indexOf(text[begin], begin + 1);
      if (text.slice(from, equals).trim() === name) return dereference(text.slice(begin + 1, end));
      from = end + 1;
    }
  }

  get root() {
    return this.size > 1 ? 1 : 0;
  }

  // By which nodes are in the order of the document.
  order(node) {
    return typeof node === "number" ? node : node.owner + (node.place + 1) / 1024;
  }
}
