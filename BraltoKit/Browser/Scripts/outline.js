// The page as an indented list of roles, names and values, with a ref on all that can be acted on.

const mostNodes = 20000;

const actionable =
  "a[href], button, input, select, textarea, summary, [role=button], [role=link], [role=tab], " +
  '[role=menuitem], [role=checkbox], [role=switch], [contenteditable=""], [contenteditable=true], ' +
  "[onclick], [tabindex]";
const media = "img, svg, video, audio, canvas, iframe, object, embed";

function setOf(words) {
  const set = { __proto__: null };
  const list = words.split(" ");
  for (let i = 0; i < list.length; i++) set[list[i]] = true;
  return set;
}

const skippedTags = setOf("SCRIPT STYLE NOSCRIPT TEMPLATE HEAD META LINK BR WBR");
// What stands between their tags is for engines that can't show them.
const replacedTags = setOf("IFRAME VIDEO AUDIO CANVAS OBJECT");
const fieldTags = setOf("INPUT TEXTAREA SELECT");
const interactiveRoles = setOf(
  "link button textbox searchbox checkbox radio slider spinbutton combobox listbox option menuitem " +
    "menuitemcheckbox menuitemradio tab switch treeitem clickable",
);
const otherRolesWithRefs = setOf("heading img dialog form iframe alert");
const leafTextRoles = setOf("paragraph listitem cell columnheader rowheader status alert tooltip");
const otherRolesNamedByContent = setOf("heading");
const landmarks = {
  __proto__: null,
  NAV: "navigation",
  MAIN: "main",
  HEADER: "banner",
  FOOTER: "contentinfo",
  ASIDE: "complementary",
  FORM: "form",
  DIALOG: "dialog",
  UL: "list",
  OL: "list",
  LI: "listitem",
  TABLE: "table",
  TR: "row",
  TH: "columnheader",
  TD: "cell",
  SUMMARY: "button",
  P: "paragraph",
  IFRAME: "iframe",
  VIDEO: "video",
  AUDIO: "audio",
  IMG: "img",
  TEXTAREA: "textbox",
  OPTION: "option",
};
const inputRoles = {
  __proto__: null,
  checkbox: "checkbox",
  radio: "radio",
  range: "slider",
  button: "button",
  submit: "button",
  reset: "button",
  image: "button",
  file: "button",
  search: "searchbox",
  number: "spinbutton",
  hidden: "",
};

const tabIndexOf = nativeGetter(HTMLElement.prototype, "tabIndex");
const firstElementChildOf = nativeGetter(Element.prototype, "firstElementChild");
const titleOf = nativeGetter(Document.prototype, "title");

// --- roles

// Empty: the element isn't shown, its children are.
function roleOf(el, tag) {
  const explicit = firstWord(getAttribute(el, "role"));
  if (explicit && explicit !== "presentation" && explicit !== "none") {
    return explicit === "generic" ? "" : explicit;
  }
  switch (tag) {
    case "A":
      return el.hasAttribute("href") ? "link" : isClickable(el) ? "clickable" : "";
    case "BUTTON":
      return "button";
    case "INPUT":
      return inputRoles[el.type] ?? "textbox";
    case "SELECT":
      return el.multiple ? "listbox" : "combobox";
    case "H1":
    case "H2":
    case "H3":
    case "H4":
    case "H5":
    case "H6":
      return "heading";
    case "SVG":
      return hasAttribute(el, "aria-label") ? "img" : "";
  }
  if (landmarks[tag]) return landmarks[tag];
  if (isEditingHost(el)) return "textbox";
  return isClickable(el) ? "clickable" : "";
}

function firstWord(text) {
  return text ? (text.trim().split(/\s+/)[0] ?? "") : "";
}

function isEditingHost(el) {
  const value = getAttribute(el, "contenteditable");
  return value !== null && value.toLowerCase() !== "false";
}

// Listeners can't be seen, but frameworks nearly always set the cursor where they listen.
function isClickable(el) {
  if (hasAttribute(el, "onclick")) return true;
  if (hasAttribute(el, "tabindex") && el instanceof HTMLElement && tabIndexOf(el) >= 0) return true;
  if (!hasOwnText(el) || getComputedStyle(el).cursor !== "pointer") return false;
  const parent = drawnParentOf(el);
  return !parent || !isElement(parent) || getComputedStyle(parent).cursor !== "pointer";
}

function hasOwnText(el) {
  for (let node = firstChildOf(el); node; node = nextSiblingOf(node)) {
    if (nodeTypeOf(node) === textType && node.data.trim()) return true;
  }
  return false;
}

function levelOf(el, tag) {
  const explicit = getAttribute(el, "aria-level");
  if (explicit) return clean(explicit, 10);
  return /^H[1-6]$/.test(tag) ? tag[1] : "2";
}

// --- text

// All that is drawn below `root`, also in shadow roots, up to about `limit` characters.
function drawnText(root, limit) {
  let text = "";
  const stack = [childrenOf(root)];
  while (stack.length > 0 && text.length <= limit) {
    const node = stack[stack.length - 1].next();
    if (!node) {
      stack.length--;
    } else if (nodeTypeOf(node) === textType) {
      text += ` ${clean(node.data, limit)}`;
    } else if (isElement(node) && !skippedTags[tagOf(node)] && isShown(node)) {
      stack[stack.length] = childrenOf(node);
    }
  }
  return text;
}

function textOf(el, limit) {
  if (!firstElementChildOf(el) && !shadowOf(el)) return clean(textContentOf(el), limit);
  const hasShadows = shadowOf(el) || shadowHosts(el).length > 0;
  return clean(hasShadows ? drawnText(el, limit) : innerText(el), limit);
}

// The text of a label, drawn or not, without that of the fields in it.
function labelText(label) {
  let text = "";
  const stack = [childrenOf(label)];
  while (stack.length > 0 && text.length <= 200) {
    const node = stack[stack.length - 1].next();
    if (!node) {
      stack.length--;
    } else if (nodeTypeOf(node) === textType) {
      text += ` ${node.data}`;
    } else if (isElement(node) && !skippedTags[tagOf(node)] && !fieldTags[tagOf(node)]) {
      stack[stack.length] = childrenOf(node);
    }
  }
  return clean(text);
}

// --- names

function nameOf(el, tag, role) {
  const label = clean(getAttribute(el, "aria-label"));
  return (
    label || labelledBy(el) || labelsOf(el) || nameByTag(el, tag) || nameByContent(el, tag, role)
  );
}

function labelledBy(el) {
  const ids = getAttribute(el, "aria-labelledby");
  if (!ids) return "";
  const root = rootOf(el);
  const list = ids.trim().split(/\s+/);
  let text = "";
  for (let i = 0; i < list.length; i++) {
    const other = query(root, `[id="${CSS.escape(list[i])}"]`);
    if (other) text += ` ${getAttribute(other, "aria-label") ?? textOf(other, 100)}`;
  }
  return clean(text);
}

function labelsOf(el) {
  const labels = el.labels;
  if (!(labels instanceof NodeList)) return "";
  let text = "";
  for (let i = 0; i < labels.length; i++) text += ` ${labelText(labels[i])}`;
  return clean(text);
}

function firstOf(el, attributes) {
  for (let i = 0; i < attributes.length; i++) {
    const text = clean(getAttribute(el, attributes[i]));
    if (text) return text;
  }
  return "";
}

function nameByTag(el, tag) {
  switch (tag) {
    case "IMG":
    case "AREA":
      return firstOf(el, ["alt", "title"]);
    case "INPUT":
      if (el.type === "image") return firstOf(el, ["alt"]) || "Submit";
      if (inputRoles[el.type] === "button") return firstOf(el, ["value"]) || el.type;
      return firstOf(el, ["placeholder", "title", "name"]);
    case "TEXTAREA":
    case "SELECT":
      return firstOf(el, ["placeholder", "title", "name"]);
    case "IFRAME":
      return firstOf(el, ["title"]) || clean(getAttribute(el, "src"), 80);
  }
  return "";
}

function nameByContent(el, tag, role) {
  if (fieldTags[tag] || tag === "IFRAME") return "";
  if (interactiveRoles[role] || leafTextRoles[role] || otherRolesNamedByContent[role]) {
    const text = textOf(el, leafTextRoles[role] ? 300 : 100);
    if (text) return text;
    if (firstElementChildOf(el) || shadowOf(el)) {
      return (
        innerName(el, "img[alt]", "alt") ||
        innerName(el, "svg[aria-label]", "aria-label") ||
        innerName(el, "[aria-label]", "aria-label") ||
        innerName(el, "[title]", "title")
      );
    }
  }
  return clean(getAttribute(el, "title"));
}

function innerName(el, selector, attribute) {
  const shadow = shadowOf(el);
  const inner = (shadow && deep(shadow, selector)) ?? deep(el, selector);
  return inner ? clean(getAttribute(inner, attribute)) : "";
}

// --- refs

// Numbers that survive calls; the page may have put anything in their place.
function lastRef() {
  const last = window.__braltoRefs;
  return Number.isSafeInteger(last) && last >= 0 ? last : 0;
}

// An element keeps its ref for as long as it lives; a copy of it gets one of its own.
function refOf(el, seen) {
  const present = getAttribute(el, "data-bralto-ref");
  if (present && /^e[1-9]\d{0,14}$/.test(present) && !seen.has(present)) {
    seen.add(present);
    window.__braltoRefs = Math.max(lastRef(), Number(present.slice(1)));
    return present;
  }
  window.__braltoRefs = lastRef() + 1;
  const ref = `e${lastRef()}`;
  setAttribute(el, "data-bralto-ref", ref);
  seen.add(ref);
  return ref;
}

// --- states

function selectedText(el) {
  const selected = [];
  const options = el.selectedOptions;
  for (let i = 0; i < options.length; i++) selected[i] = clean(options[i].text);
  return selected.join(", ");
}

function valuePart(el, tag, role) {
  let value = "";
  if (tag === "SELECT") value = selectedText(el);
  else if (
    tag === "TEXTAREA" ||
    (tag === "INPUT" && role !== "button" && !"checkbox radio".includes(el.type))
  )
    value = valueOf(el);
  return value ? ` value="${clean(value, 200)}"` : "";
}

function isTrue(el, attribute) {
  return getAttribute(el, attribute) === "true";
}

function flagsPart(el, tag) {
  let flags = "";
  if (el.checked === true || isTrue(el, "aria-checked")) flags += " [checked]";
  if (matches(el, ":disabled") || isTrue(el, "aria-disabled")) flags += " [disabled]";
  if (el.required === true || isTrue(el, "aria-required")) flags += " [required]";
  const expanded = getAttribute(el, "aria-expanded") ?? foldState(el, tag);
  if (expanded) flags += ` [expanded=${clean(expanded, 20)}]`;
  if ((tag === "OPTION" && el.selected) || isTrue(el, "aria-selected")) flags += " [selected]";
  if (rootOf(el).activeElement === el && tag !== "BODY") flags += " [focused]";
  return flags;
}

function foldState(el, tag) {
  const parent = tag === "SUMMARY" ? parentOf(el) : null;
  return parent instanceof HTMLDetailsElement ? String(hasAttribute(parent, "open")) : null;
}

function linkPart(el, tag) {
  if ((tag !== "A" && tag !== "AREA") || !hasAttribute(el, "href")) return "";
  const written = getAttribute(el, "href");
  try {
    const url = new URL(written, document.baseURI);
    const isNear = url.origin === location.origin && url.origin !== "null";
    return ` -> ${clean(isNear ? url.pathname + url.search + url.hash : url.href, 120)}`;
  } catch {
    return ` -> ${clean(written, 120)}`;
  }
}

function optionsPart(el, tag) {
  if (tag !== "SELECT") return "";
  const shown = [];
  const options = el.options;
  for (let i = 0; i < options.length && i < 12; i++) shown[i] = clean(options[i].text, 40);
  const more = options.length - shown.length;
  return ` options: ${shown.join(" | ")}${more > 0 ? ` | … ${more} more` : ""}`;
}

// --- the walk

// The children that are drawn in an element's place: of its shadow root, assigned to it, or its own.
function childrenOf(el) {
  const shadow = shadowOf(el);
  if (!shadow && el instanceof HTMLSlotElement) {
    const assigned = el.assignedNodes({ flatten: true });
    if (assigned.length > 0) {
      let index = 0;
      return { next: () => assigned[index++] };
    }
  }
  let following = replacedTags[tagOf(el)] ? null : firstChildOf(shadow ?? el);
  return {
    next() {
      const node = following;
      if (node) following = nextSiblingOf(node);
      return node;
    },
  };
}

class Outline {
  entries = [];
  isCutShort = false;
  #refs = new Set();
  // Elements above one that can be acted on, as far as that has been asked.
  #holders = new Set();

  build(scope) {
    const frames = [{ children: { next: onceFrom(scope) }, depth: 0 }];
    let visited = 0;
    while (frames.length > 0) {
      const { children, depth } = frames[frames.length - 1];
      const node = children.next();
      if (!node) {
        frames.length--;
      } else if (++visited > mostNodes) {
        this.isCutShort = true;
        return;
      } else if (nodeTypeOf(node) === textType) {
        this.#addText(node.data, depth);
      } else if (isElement(node)) {
        const inner = this.#addElement(node, depth);
        if (inner !== null) frames[frames.length] = { children: childrenOf(node), depth: inner };
      }
    }
  }

  #add(depth, text, priority) {
    this.entries[this.entries.length] = { depth, text, priority };
  }

  #addText(data, depth) {
    const text = clean(data, 300);
    if (!text) return;
    const last = this.entries[this.entries.length - 1];
    if (last?.isText && last.depth === depth && last.text.length < 400) last.text += ` ${text}`;
    else
      this.entries[this.entries.length] = {
        depth,
        text: `text: ${text}`,
        priority: 2,
        isText: true,
      };
  }

  // The depth of the children, or null if they aren't walked.
  #addElement(el, depth) {
    const tag = tagOf(el);
    if (skippedTags[tag] || isTrue(el, "aria-hidden") || !isShown(el)) return null;
    const role = roleOf(el, tag);
    if (!role) return tag === "INPUT" ? null : depth;

    const isInteractive = interactiveRoles[role] === true;
    const isLeafText = leafTextRoles[role] === true;
    const isBare =
      (isInteractive || isLeafText || role === "heading") &&
      !fieldTags[tag] &&
      !this.#holdsActionable(el);
    const name = nameOf(el, tag, role);
    if (isLeafText && isBare && !name && !query(el, media)) return null;

    const isTextLine = isLeafText && isBare && name !== "";
    this.#add(
      depth,
      this.#line(el, tag, role, name, isTextLine),
      isInteractive ? 0 : isTextLine ? 2 : 1,
    );
    return isBare || fieldTags[tag] || role === "img" ? null : depth + 1;
  }

  #line(el, tag, role, name, isTextLine) {
    let line = clean(role, 40);
    if (role === "heading") line += ` [level=${levelOf(el, tag)}]`;
    if (name) line += isTextLine ? `: ${name}` : ` "${name}"`;
    if (interactiveRoles[role] || otherRolesWithRefs[role])
      line += ` [ref=${refOf(el, this.#refs)}]`;
    return (
      line +
      valuePart(el, tag, role) +
      flagsPart(el, tag) +
      linkPart(el, tag) +
      optionsPart(el, tag)
    );
  }

  // Asked of each element on the way down. Whatever was found below one answers for all in between,
  // and where nothing was found nobody asks again, so no part of the page is searched twice.
  #holdsActionable(el) {
    if (this.#holders.has(el)) return true;
    const shadow = shadowOf(el);
    if (!shadow && !firstElementChildOf(el)) return false;
    const found = (shadow && deep(shadow, actionable)) ?? deep(el, actionable);
    if (!found) return false;
    for (
      let node = drawnParentOf(found);
      node && !this.#holders.has(node);
      node = drawnParentOf(node)
    ) {
      this.#holders.add(node);
      if (node === el) break;
    }
    return true;
  }
}

function onceFrom(value) {
  let rest = value;
  return () => {
    const node = rest;
    rest = null;
    return node;
  };
}

// --- the text

// Leaves out text first, and of the rest what no longer fits.
function render(entries, maxChars) {
  const lines = [];
  let needed = 0;
  for (let i = 0; i < entries.length; i++) {
    const { depth, text, priority } = entries[i];
    lines[i] = `${"  ".repeat(depth)}- ${text}\n`;
    if (priority < 2) needed += lines[i].length;
  }
  const isKept = [];
  for (let i = 0; i < entries.length; i++) {
    isKept[i] = entries[i].priority < 2 || needed + lines[i].length <= maxChars;
    if (isKept[i] && entries[i].priority === 2) needed += lines[i].length;
  }
  let text = "";
  let leftOut = 0;
  for (let i = 0; i < lines.length; i++) {
    if (isKept[i] && text.length + lines[i].length <= maxChars) text += lines[i];
    else leftOut++;
  }
  return { text, leftOut };
}

function outline({ ref, selector, maxChars }) {
  const element = find(ref, selector);
  const scope = element ?? bodyOf(document) ?? documentElementOf(document);
  const walk = new Outline();
  walk.build(scope);
  const { text, leftOut } = render(walk.entries, maxChars);

  const { at, most } = pageScroll();
  let result = `Page: ${clean(titleOf(document), 300)}\nURL: ${location.href}\n`;
  result += `Viewport ${window.innerWidth}×${window.innerHeight}, scrolled to ${at} of ${most}\n`;
  if (element) result += `Showing ${describe(element)} only\n`;
  result += `\n${text || "(nothing visible)\n"}`;
  if (leftOut > 0) {
    result +=
      `… ${leftOut} more lines left out to stay under ${maxChars} characters. ` +
      "Pass a ref or selector to see one part in full, or raise maxChars.\n";
  }
  if (walk.isCutShort) result += `… page is very large; stopped after ${mostNodes} nodes.\n`;
  return result.trimEnd();
}
