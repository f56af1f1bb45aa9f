// Reads the text of an XML document piece by piece, as it comes, into a Tree. It reads what reports hold: elements,
// attributes, text, CDATA, comments. A document type is refused.
//
// `parts` names the children of the root that are wanted; others are left out, and reading is over when all were there.
// `counted` names elements whose children are wanted without attributes and content, so that they can be counted.

class DamagedDocument extends Error {}

const LESS = 60;
const GREATER = 62;
const SLASH = 47;
const NAMES = /^[\p{L}_:][\p{L}\p{N}_:.\u00b7-]*$/u;
// What is skipped as a whole, by how it begins. The first is spelt so that no page takes it for a comment of its own.
const SKIPPED = [
  ["<!\x2d-", "-->"],
  ["<![CDATA[", "]]>"],
  ["<?", "?>"],
];

class TreeReader {
  constructor({ parts = null, counted = [] } = {}) {
    this.tree = new Tree();
    this.parts = parts && new Set(parts);
    this.counted = new Set(counted.map((name) => this.tree.nameNumber(name)));
    this.open = [0];
    this.rest = ""; // what came and is not read yet
    this.skippedUntil = null; // the tag that ends what is left out
    this.isDone = false;
    this.known = new Map(); // numbers of names that were seen before
  }

  feed(text) {
    this.rest += text;
    while (!this.isDone && this.step(false));
  }

  // The tree of all that came.
  finish() {
    while (!this.isDone && this.step(true));
    const { tree } = this;
    if (!this.isDone && (this.open.length > 1 || tree.size === 1 || this.skippedUntil)) {
      throw new DamagedDocument("it ends early");
    }
    for (const element of this.open) {
      tree.after[element] = tree.size;
      tree.end[element] = tree.length;
    }
    this.rest = "";
    return tree;
  }

  // Reads what can be read at once; false when it takes more text to go on.
  step(isLast) {
    const text = this.rest;
    if (this.skippedUntil) return this.skipRest(text);
    // The text before the next tag belongs to the one before, so that it is not torn apart.
    const limit = isLast ? text.length : text.lastIndexOf("<");
    const size = this.tree.size;
    const read = limit > 0 ? this.read(text, limit) : 0;
    // One after the other that is only counted: nobody will ask for their text.
    if (this.isCounting && this.tree.size === size + 1) this.tree.length += read;
    else if (read > 0) this.tree.addText(text.slice(0, read));
    this.rest = text.slice(read);
    return this.skippedUntil !== null && !this.isDone;
  }

  get isCounting() {
    return this.skippedUntil !== null && this.counted.has(this.tree.name[this.tree.parent[this.tree.size - 1]]);
  }

  skipRest(text) {
    const end = text.indexOf(this.skippedUntil);
    const tag = this.skippedUntil.length;
    this.rest = text.slice(end < 0 ? Math.max(0, text.length - tag) : end + tag);
    if (end >= 0) this.skippedUntil = null;
    return end >= 0;
  }

  // Reads the tags that begin before `limit`, and gives how far it came.
  read(text, limit) {
    const base = this.tree.length;
    let done = 0;
    for (let at = text.indexOf("<"); at >= 0 && at < limit; at = text.indexOf("<", done)) {
      const next = text.charCodeAt(at + 1);
      if (next === SLASH) {
        done = this.readEnd(text, at, base);
        if (this.isDone) return done;
      } else if (next === 33 || next === 63) {
        done = this.skip(text, at);
        if (done < 0) return at;
      } else {
        done = this.readStart(text, at, base);
        if (this.skippedUntil) return done;
      }
    }
    return Math.max(done, limit);
  }

  skip(text, at) {
    const kind = SKIPPED.find(([begin]) => text.startsWith(begin, at));
    if (!kind) throw new DamagedDocument("it has a document type");
    const end = text.indexOf(kind[1], at + kind[0].length);
    return end < 0 ? -1 : end + kind[1].length;
  }

  readEnd(text, at, base) {
    const { tree, open } = this;
    const close = text.indexOf(">", at);
    const element = open.pop();
    if (close < 0 || open.length === 0 || text.slice(at + 2, close).trimEnd() !== tree.nameOf(element)) {
      throw new DamagedDocument("its tags do not match");
    }
    this.close(element, base + at);
    return close + 1;
  }

  close(element, end) {
    const { tree } = this;
    tree.end[element] = end;
    tree.after[element] = tree.size;
    if (this.open.length !== 2 || !this.parts?.delete(tree.nameOf(element))) return;
    this.isDone = this.parts.size === 0;
  }

  readStart(text, at, base) {
    const { tree, open } = this;
    let end = at + 1;
    let code = text.charCodeAt(end);
    while (code !== GREATER && code !== SLASH && !isSpace(code)) {
      if (code === LESS || end >= text.length) throw new DamagedDocument("a tag has no end");
      end += 1;
      code = text.charCodeAt(end);
    }
    const word = text.slice(at + 1, end);
    let name = this.known.get(word);
    if (name === undefined) {
      if (!NAMES.test(word)) throw new DamagedDocument("a tag has no name");
      this.known.set(word, (name = tree.nameNumber(word)));
    }
    const close = code === GREATER ? end : this.attributesEnd(text, end);
    const isEmpty = text.charCodeAt(close - 1) === SLASH;
    if (this.isUnwanted(word)) {
      this.skippedUntil = isEmpty ? text.slice(at, close + 1) : `</${word}>`;
      return at;
    }
    if (open.length === 1 && tree.size > 1) throw new DamagedDocument("it has two roots");
    const element = tree.add(name, open[open.length - 1]);
    const isCounted = this.counted.has(tree.name[tree.parent[element]]);
    tree.attributes[element] = close > end + 1 && !isCounted ? base + end : 0;
    tree.begin[element] = base + close + 1;
    if (isCounted && !isEmpty) this.skippedUntil = `</${word}>`;
    if (isCounted || isEmpty) this.close(element, base + close + 1);
    else open.push(element);
    return close + 1;
  }

  isUnwanted(name) {
    return this.parts !== null && this.open.length === 2 && !this.parts.has(name);
  }

  // Where the ">" of a tag with attributes stands.
  attributesEnd(text, at) {
    for (;;) {
      const code = text.charCodeAt(at);
      if (code === GREATER) return at;
      if (code === 34 || code === 39) {
        at = text.indexOf(text[at], at + 1);
        if (at < 0) break;
      } else if (code === LESS || Number.isNaN(code)) break;
      at += 1;
    }
    throw new DamagedDocument("a tag has no end");
  }
}
