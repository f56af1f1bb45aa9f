// Reads the files of the report. Whatever keeps one from being read becomes a Problem, which says so in words.

class Problem extends Error {
  constructor(title, text, links = []) {
    super(title);
    this.text = text;
    this.links = links;
  }
}

// The answer of the server; null for a file that is not there.
async function askFor(name, method = "GET") {
  let response;
  try {
    response = await fetch(name, { method, cache: "no-cache" });
  } catch {
    throw serverProblem();
  }
  if (response.status === 404) return null;
  if (!response.ok) {
    throw new Problem(`${name} cannot be read`, `The server answered ${response.status} ${response.statusText}.`);
  }
  return response;
}

function serverProblem() {
  return new Problem(
    "The report cannot be reached",
    "What served this page does not answer any more. Start it again with: orvo-report view, and the folder.",
  );
}

function damageProblem(name, why) {
  return new Problem(
    `${name} is damaged`,
    `It is no well-formed XML: ${why}. Perhaps the report was being written while it was read; load the page again.`,
  );
}

// Reads a document as it comes. `onProgress` is told how much of it has come, from 0 to 1, where the server says so.
async function readTree(name, response, wanted, onProgress) {
  const reader = new TreeReader(wanted);
  const decoder = new TextDecoder();
  const size = Number(response.headers.get("Content-Length"));
  const stream = response.body.getReader();
  let came = 0;
  let told = performance.now();
  try {
    for (;;) {
      const { done, value } = await stream.read().catch(() => Promise.reject(serverProblem()));
      if (done) break;
      came += value.length;
      reader.feed(decoder.decode(value, { stream: true }));
      if (reader.isDone) break;
      if (size === 0 || performance.now() - told < 200) continue;
      told = performance.now();
      onProgress(Math.min(1, came / size));
      await nextTask();
    }
    await stream.cancel();
    return reader.finish();
  } catch (error) {
    stream.cancel().catch(() => {});
    throw error instanceof DamagedDocument ? damageProblem(name, error.message) : error;
  }
}

// The document that was read last, since several views show the same one.
let recent = null;

// What tells two states of a file apart; null when the server gives none.
function stateOf(response) {
  return response.headers.get("ETag");
}

async function readDocument(name, wanted, onProgress) {
  const key = JSON.stringify([name, wanted]);
  const known = recent?.key === key && recent.state ? await askFor(name, "HEAD") : null;
  if (known && stateOf(known) === recent.state) return recent.tree;
  recent = null;
  const response = await askFor(name);
  if (response === null) {
    throw new Problem(
      "There is nothing of this in the report",
      `The report has no ${name}. Either nothing of the kind was captured, or the settings leave it out.`,
    );
  }
  const tree = await readTree(name, response, wanted, onProgress);
  recent = { key, state: stateOf(response), tree };
  return tree;
}

async function readSheet(name, documentName) {
  const response = await askFor(name);
  if (response === null) {
    throw new Problem(
      "This report does not show this",
      `Its figures are there, but the report has no style sheet ${name} that would lay them out. Full reports have it, ` +
        "unless the templates that they are made with lack it.",
      [{ title: `${documentName} as it is`, address: documentName }],
    );
  }
  const parsed = new DOMParser().parseFromString(await response.text(), "application/xml");
  if (parsed.querySelector("parsererror")) throw damageProblem(name, "its tags do not match");
  return new StyleSheet(parsed);
}
