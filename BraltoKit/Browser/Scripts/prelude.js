"use strict";
// What all page scripts share. Each script is a set of functions that the program puts behind this
// file, and calls in a function of their own in the page's own world. So everything here may meet a
// page that is hostile or merely old-fashioned: a form whose fields are named "children" hides the
// form's own properties, and a library may have replaced a method of all arrays.

// The platform's own accessor of a property, which no field's name can hide.
function nativeGetter(prototype, name) {
  const { get } = Object.getOwnPropertyDescriptor(prototype, name);
  return (object) => get.call(object);
}

// The same for a method of at most two parameters.
function nativeMethod(prototype, name) {
  const method = prototype[name];
  return (object, first, second) => method.call(object, first, second);
}

const parentOf = nativeGetter(Node.prototype, "parentNode");
const firstChildOf = nativeGetter(Node.prototype, "firstChild");
const nextSiblingOf = nativeGetter(Node.prototype, "nextSibling");
const nodeTypeOf = nativeGetter(Node.prototype, "nodeType");
const textContentOf = nativeGetter(Node.prototype, "textContent");
const isConnected = nativeGetter(Node.prototype, "isConnected");
const shadowOf = nativeGetter(Element.prototype, "shadowRoot");
const localNameOf = nativeGetter(Element.prototype, "localName");
const innerTextOf = nativeGetter(HTMLElement.prototype, "innerText");
const getAttribute = nativeMethod(Element.prototype, "getAttribute");
const hasAttribute = nativeMethod(Element.prototype, "hasAttribute");
const setAttribute = nativeMethod(Element.prototype, "setAttribute");
const matches = nativeMethod(Element.prototype, "matches");
const boxOf = nativeMethod(Element.prototype, "getBoundingClientRect");
const scrollIntoView = nativeMethod(Element.prototype, "scrollIntoView");
const rootOf = nativeMethod(Node.prototype, "getRootNode");
const dispatch = nativeMethod(EventTarget.prototype, "dispatchEvent");
const bodyOf = nativeGetter(Document.prototype, "body");
const activeElementOf = nativeGetter(Document.prototype, "activeElement");
const scrollingElementOf = nativeGetter(Document.prototype, "scrollingElement");
const documentElementOf = nativeGetter(Document.prototype, "documentElement");
const execCommand = Document.prototype.execCommand;

const elementType = 1;
const textType = 3;
const documentType = 9;
const fragmentType = 11;

function isElement(node) {
  return nodeTypeOf(node) === elementType;
}

// In upper case, as of an HTML element; of an SVG one too.
function tagOf(el) {
  return localNameOf(el).toUpperCase();
}

function clean(s, n = 100) {
  const text = String(s ?? "")
    .replace(/\s+/g, " ")
    .trim();
  return text.length > n ? text.slice(0, n - 1) + "…" : text;
}

// The interface that has the methods of a document, a shadow root or an element.
function parentInterface(root) {
  switch (nodeTypeOf(root)) {
    case elementType:
      return Element.prototype;
    case documentType:
      return Document.prototype;
    default:
      return DocumentFragment.prototype;
  }
}

function query(root, selector) {
  return parentInterface(root).querySelector.call(root, selector);
}

function queryAll(root, selector) {
  return parentInterface(root).querySelectorAll.call(root, selector);
}

// The elements below `root`, without those in shadow roots, that have an open shadow root.
function shadowHosts(root) {
  const hosts = [];
  const all = queryAll(root, "*");
  for (let i = 0; i < all.length; i++) {
    if (shadowOf(all[i])) hosts[hosts.length] = all[i];
  }
  return hosts;
}

// The first match, also in open shadow roots.
function deep(root, selector) {
  const found = query(root, selector);
  if (found) return found;
  const hosts = shadowHosts(root);
  for (let i = 0; i < hosts.length; i++) {
    const inner = deep(shadowOf(hosts[i]), selector);
    if (inner) return inner;
  }
  return null;
}

function find(ref, selector) {
  if (ref) {
    const el = deep(document, `[data-bralto-ref="${CSS.escape(ref)}"]`);
    if (!el) {
      throw new Error(
        `No element ${ref} on the page now. Take a new snapshot: refs go away when the page changes.`,
      );
    }
    return el;
  }
  if (selector) {
    const el = deep(document, selector);
    if (!el) throw new Error(`Nothing on the page matches ${selector}`);
    return el;
  }
  return null;
}

function innerText(el) {
  return el instanceof HTMLElement ? innerTextOf(el) : textContentOf(el);
}

// What is in a field; of a password, as many dots.
function valueOf(el) {
  const value = typeof el.value === "string" ? el.value : "";
  return tagOf(el) === "INPUT" && el.type === "password" ? "•".repeat(value.length) : value;
}

function describe(el) {
  const tag = localNameOf(el).toLowerCase();
  const candidates = [
    () => getAttribute(el, "aria-label"),
    () => innerText(el),
    () => valueOf(el),
    () => getAttribute(el, "placeholder"),
    () => getAttribute(el, "title"),
  ];
  for (let i = 0; i < candidates.length; i++) {
    const name = clean(candidates[i](), 60);
    if (name) return `${tag} "${name}"`;
  }
  return tag;
}

function sleep(ms) {
  return new Promise((resolve) => setTimeout(resolve, ms));
}

// The parent in the tree that is drawn: out of a shadow root to its host.
function drawnParentOf(node) {
  const parent = isElement(node) && node.assignedSlot ? node.assignedSlot : parentOf(node);
  return parent && nodeTypeOf(parent) === fragmentType ? (parent.host ?? null) : parent;
}

// Whether `inner` is `outer` or lies in it, also through shadow roots.
function isWithin(inner, outer) {
  for (let node = inner; node; node = drawnParentOf(node)) {
    if (node === outer) return true;
  }
  return false;
}

// Absent in engines before 105; then computed styles say the same, a little slower.
const checkVisibility = Element.prototype.checkVisibility;

// Whether an element is drawn, if its ancestors are.
function isShown(el) {
  if (checkVisibility) {
    return (
      checkVisibility.call(el, { checkVisibilityCSS: true }) ||
      getComputedStyle(el).display === "contents"
    );
  }
  const style = getComputedStyle(el);
  return style.display !== "none" && style.visibility !== "hidden" && !isFoldedAway(el);
}

// Whether an element is drawn; nothing is known of its ancestors.
function isVisible(el) {
  if (!isConnected(el) || !isShown(el)) return false;
  if (checkVisibility) return true;
  for (let node = drawnParentOf(el); node && isElement(node); node = drawnParentOf(node)) {
    if (getComputedStyle(node).display === "none" || isFoldedAway(node)) return false;
  }
  return true;
}

// What computed styles alone don't tell: the content of a closed `details`, an element whose parent
// skips its content, and the parts of a drawing that are never drawn.
function isFoldedAway(el) {
  const parent = parentOf(el);
  if (!parent || !isElement(parent)) return false;
  if (parent instanceof HTMLDetailsElement && !hasAttribute(parent, "open")) {
    return query(parent, ":scope > summary") !== el;
  }
  if (el instanceof SVGElement) return undrawn[localNameOf(el)] === true;
  // Siblings ask one after the other.
  if (parent !== lastParent) {
    lastParent = parent;
    lastParentSkips = getComputedStyle(parent).contentVisibility === "hidden";
  }
  return lastParentSkips;
}

let lastParent = null;
let lastParentSkips = false;
const undrawn = { __proto__: null, title: true, desc: true, defs: true, metadata: true };

// The focused element, also in shadow roots; null if none is.
function focusedElement() {
  let el = activeElementOf(document);
  for (let inner = el; inner; inner = shadowOf(inner)?.activeElement) el = inner;
  return el;
}

// Without scrolling. In a window that doesn't have the keyboard an engine moves the focus but keeps
// the events back until it has, so the page is told by hand.
function focus(el) {
  const before = focusedElement();
  if (el === before || typeof el.focus !== "function") return;
  el.focus({ preventScroll: true });
  if (document.hasFocus() || focusedElement() !== el) return;
  if (before && before !== bodyOf(document)) {
    fireFocus(before, "blur", false, el);
    fireFocus(before, "focusout", true, el);
  }
  fireFocus(el, "focus", false, before);
  fireFocus(el, "focusin", true, before);
}

function fireFocus(el, type, bubbles, relatedTarget) {
  dispatch(el, new FocusEvent(type, { bubbles, composed: true, view: window, relatedTarget }));
}

function isEditable(el) {
  return el.isContentEditable === true;
}

// False if the page cancelled it.
function fireKey(el, type, init) {
  const all = { bubbles: true, cancelable: true, composed: true, view: window, ...init };
  return dispatch(el, new KeyboardEvent(type, all));
}

function fireInput(el, inputType, data) {
  dispatch(el, new InputEvent("input", { bubbles: true, composed: true, inputType, data }));
}

function edit(command, text = null) {
  return execCommand.call(document, command, false, text);
}

function fireChange(el) {
  dispatch(el, new Event("change", { bubbles: true }));
}

// Sets a field's value past any setter that a framework put on the element itself.
function setValue(el, value) {
  for (let proto = Object.getPrototypeOf(el); proto; proto = Object.getPrototypeOf(proto)) {
    const property = Object.getOwnPropertyDescriptor(proto, "value");
    if (property?.set) {
      property.set.call(el, value);
      return;
    }
  }
  el.value = value;
}

function pageScroll() {
  const page = scrollingElementOf(document) ?? documentElementOf(document);
  return {
    at: Math.round(window.scrollY),
    most: Math.max(0, page.scrollHeight - window.innerHeight),
  };
}
