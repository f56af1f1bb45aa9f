// Reads the files of the report. Whatever keeps one from being read becomes a Problem, which says so in words.

class Problem extends Error {
  constructor(title, text, links = []) {
    super(title);
    this.text = text;
    this.links = links;
  }
}

async function readFile(name) {
  let response;
  try {
    response = await fetch(name, { cache: "no-cache" });
  } catch {
    throw new Problem(
      "The report cannot be reached",
      "What served this page does not answer any more. Start it again with: orvo-report view, and the folder.",
    );
  }
  if (response.status === 404) return null;
  if (!response.ok) {
    throw new Problem(`${name} cannot be read`, `The server answered ${response.status} ${response.statusText}.`);
  }
  return response.text();
}

function parseXml(text, name) {
  const parsed = new DOMParser().parseFromString(text, "application/xml");
  if (parsed.querySelector("parsererror")) {
    throw new Problem(
      `${name} is damaged`,
      "It is no well-formed XML. Perhaps the report was being written while it was read; load the page again.",
    );
  }
  return parsed;
}

// The documents of this page that were read last, since several views show the same one.
const recentDocuments = new Map();

async function readDocument(name) {
  const text = await readFile(name);
  if (text === null) {
    throw new Problem(
      "There is nothing of this in the report",
      `The report has no ${name}. Either nothing of the kind was captured, or the settings leave it out.`,
    );
  }
  const recent = recentDocuments.get(name);
  if (recent && recent.text === text) return recent.parsed;
  const parsed = parseXml(text, name);
  recentDocuments.clear();
  recentDocuments.set(name, { text, parsed });
  return parsed;
}

async function readSheet(name, documentName) {
  const text = await readFile(name);
  if (text === null) {
    throw new Problem(
      "This kind of report does not show this",
      `Its figures are there, but the report leaves out the style sheet ${name} that would lay them out. ` +
        "A full report has it.",
      [{ title: `${documentName} as it is`, address: documentName }],
    );
  }
  return new StyleSheet(parseXml(text, name));
}
