// The menu stands in a frame of its own, in a file that the report writes. Once it has loaded, this gives it what the
// file does not have: a language, a title, texts for its pictures, buttons that the keyboard reaches, and a layout that
// follows the width of the window. Until then, and without it, the pictures stand where the file puts them.

const MENU_TEXTS = {
  main: "Report",
  nodes: "Nodes",
  protocols: "Protocols",
  expert: "Expert",
  voip: "Voice and video",
  wireless: "Wireless",
  conversations: "Conversations",
  overview: "Overview",
  snapshots: "Snapshots",
  history: "History",
  graphs: "Graphs",
  details: "Details",
  hierarchy: "Hierarchy",
  summary: "Summary",
  flow_stats: "Flows",
  application_stats: "Applications",
  event_log: "Event log",
  channels: "Channels",
  media: "Media",
};

function menuText(image) {
  const name = /([A-Za-z_]+?)(?:_on|_off)?\.gif$/.exec(image.getAttribute("src") ?? "")?.[1] ?? "";
  return MENU_TEXTS[name.toLowerCase()] ?? null;
}

class Menu {
  constructor(frame) {
    this.frame = frame;
    this.buttons = new Map();
    frame.addEventListener("load", () => this.dress());
    if (frame.contentDocument?.readyState === "complete") this.dress();
  }

  dress() {
    const menu = this.frame.contentDocument;
    if (!menu?.body || menu.querySelector("nav") || !menu.querySelector("img")) return;
    menu.documentElement.lang = "en";
    menu.documentElement.className = "menu";
    menu.title = "Menu of the report";
    this.share(menu);
    const tabs = menu.createElement("nav");
    tabs.setAttribute("aria-label", "Parts of the report");
    const buttons = menu.createElement("nav");
    buttons.setAttribute("aria-label", "Views of this part");
    buttons.className = "buttons";
    for (const image of [...menu.querySelectorAll("img")]) this.place(image, tabs, buttons);
    menu.body.append(tabs, ...(buttons.childElementCount ? [buttons] : []));
    this.mark();
    const watcher = new ResizeObserver(() => this.fit());
    for (const row of menu.querySelectorAll("nav")) watcher.observe(row);
    this.fit();
  }

  // The frame gets the styles of this page by way of the object model, as its own policy allows no style sheet.
  share(menu) {
    const Sheet = this.frame.contentWindow.CSSStyleSheet;
    const copy = new Sheet();
    for (const sheet of document.styleSheets) {
      copy.replaceSync(Array.from(sheet.cssRules, (rule) => rule.cssText).join("\n"));
    }
    menu.adoptedStyleSheets = [copy];
  }

  place(image, tabs, buttons) {
    const text = menuText(image);
    const isLogo = /logo\.gif$/.test(image.getAttribute("src") ?? "");
    image.alt = text ?? (isLogo ? "OrvoReports" : "");
    if (!text && !isLogo) {
      image.className = "decoration";
      return;
    }
    let item = image.parentElement.localName === "a" ? image.parentElement : null;
    if (!item) {
      item = image.ownerDocument.createElement("span");
      image.replaceWith(item);
      item.append(image);
      if (!isLogo) item.setAttribute("aria-current", "page");
    }
    item.className = isLogo ? "logo" : "item";
    const shown = image.ownerDocument.createElement("span");
    shown.setAttribute("aria-hidden", "true");
    shown.textContent = image.alt;
    item.append(shown);
    const call = /^parent\.(load\w+)\(\)$/.exec(image.getAttribute("onclick") ?? "")?.[1];
    if (call in VIEWS) {
      this.buttons.set(call, item);
      item.addEventListener("click", (event) => this.press(event, call), true);
      buttons.append(item);
    } else if (isLogo) tabs.prepend(item);
    else tabs.append(item);
  }

  // The keyboard presses the link, the mouse the picture in it; both mean the picture's call.
  press(event, call) {
    event.preventDefault();
    event.stopPropagation();
    window[call]();
  }

  // Marks the button of the view that is shown.
  mark(view = this.view) {
    this.view = view;
    for (const [call, item] of this.buttons) {
      if (call === view) item.setAttribute("aria-current", "true");
      else item.removeAttribute("aria-current");
    }
  }

  fit() {
    // The body of such an old page is as high as its frame; its rows are as high as they need to be.
    const rows = [...this.frame.contentDocument.querySelectorAll("nav")];
    this.frame.style.height = `${rows.reduce((height, row) => height + row.offsetHeight, 0)}px`;
  }
}
