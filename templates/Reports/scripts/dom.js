// Small helpers of the page.

// A new element with properties and children; texts among these become text nodes.
function make(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key === "class") element.className = value;
    else if (key === "on") for (const [event, action] of Object.entries(value)) element.addEventListener(event, action);
    else if (key in element && key !== "role") element[key] = value;
    else element.setAttribute(key, value);
  }
  element.append(...children);
  return element;
}

function makeSvg(name, attributes = {}, ...children) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.append(...children);
  return element;
}

// Lets the page answer and paint before what follows.
function nextTask() {
  return globalThis.scheduler?.yield ? scheduler.yield() : new Promise((resolve) => setTimeout(resolve));
}

// Calls `body` with 0 to count - 1 without keeping the page from answering. Ends early when `isStale` says so, and
// tells whether it came to the end.
async function inSlices(count, body, isStale = () => false, onProgress = null) {
  const slice = 14;
  let until = performance.now() + slice;
  for (let i = 0; i < count; i += 1) {
    body(i);
    if ((i & 63) === 63 && performance.now() > until) {
      if (onProgress) onProgress(i / count);
      await nextTask();
      if (isStale()) return false;
      until = performance.now() + slice;
    }
  }
  return !isStale();
}
