// Presses a key, and does what an engine does for real keys only.

const aliases = {
  __proto__: null,
  esc: "Escape",
  return: "Enter",
  space: " ",
  spacebar: " ",
  up: "ArrowUp",
  down: "ArrowDown",
  left: "ArrowLeft",
  right: "ArrowRight",
  del: "Delete",
};
const keyCodes = {
  __proto__: null,
  Enter: 13,
  Escape: 27,
  Tab: 9,
  Backspace: 8,
  Delete: 46,
  ArrowDown: 40,
  ArrowUp: 38,
  ArrowLeft: 37,
  ArrowRight: 39,
  Home: 36,
  End: 35,
  PageUp: 33,
  PageDown: 34,
  " ": 32,
};
const activatedRoles = /^(button|link|menuitem|option|tab)$/;
const toggledRoles = /^(button|checkbox|switch)$/;
const focusable =
  "a[href], area[href], button, input, select, textarea, summary, iframe, audio[controls], " +
  "video[controls], [tabindex], [contenteditable]";

function parseKey(text) {
  const parts = text.split("+");
  const name = parts[parts.length - 1] || "+";
  const held = { __proto__: null };
  for (let i = 0; i < parts.length - 1; i++) held[parts[i].trim().toLowerCase()] = true;
  const key = aliases[name.toLowerCase()] ?? name;
  return {
    key,
    code: codeOf(key),
    keyCode: keyCodes[key] ?? (key.length === 1 ? key.toUpperCase().charCodeAt(0) : 0),
    shiftKey: held.shift === true,
    ctrlKey: held.control === true || held.ctrl === true,
    altKey: held.alt === true || held.option === true,
    metaKey: held.meta === true || held.cmd === true || held.command === true,
  };
}

function codeOf(key) {
  if (key === " ") return "Space";
  if (/^[a-z]$/i.test(key)) return `Key${key.toUpperCase()}`;
  return /^\d$/.test(key) ? `Digit${key}` : key;
}

function isField(el) {
  const tag = tagOf(el);
  return tag === "TEXTAREA" || (tag === "INPUT" && !buttonTypes[el.type]);
}

const buttonTypes = {
  __proto__: null,
  button: 1,
  submit: 1,
  reset: 1,
  image: 1,
  file: 1,
  checkbox: 1,
  radio: 1,
  range: 1,
  color: 1,
};

function roleAttribute(el) {
  return (getAttribute(el, "role") ?? "").trim().toLowerCase();
}

// --- what the engine would do

function enter(el) {
  const tag = tagOf(el);
  if (tag === "TEXTAREA") {
    write(el, `${el.value}\n`, "insertLineBreak", null);
    return "";
  }
  if (isEditable(el)) {
    edit("insertParagraph");
    return "";
  }
  const activates = /^(A|BUTTON|SUMMARY)$/.test(tag) || activatedRoles.test(roleAttribute(el));
  const isButton = tag === "INPUT" && /^(button|submit|reset|image|file)$/.test(el.type);
  if (activates || isButton) {
    el.click();
    return " (activated it)";
  }
  if ((tag === "INPUT" || tag === "SELECT") && el.form instanceof HTMLFormElement) {
    HTMLFormElement.prototype.requestSubmit.call(el.form);
    return " (submitted the form)";
  }
  return "";
}

function isToggledBySpace(el) {
  const tag = tagOf(el);
  return (
    tag === "BUTTON" ||
    tag === "SUMMARY" ||
    (tag === "INPUT" && /^(button|submit|reset|image|file|checkbox|radio)$/.test(el.type)) ||
    toggledRoles.test(roleAttribute(el))
  );
}

function write(el, value, inputType, data) {
  setValue(el, value);
  fireInput(el, inputType, data);
}

function moveFocus(el, isBackwards) {
  const stops = [];
  collectStops(document, stops);
  if (stops.length === 0) return "";
  let index = -1;
  for (let i = 0; i < stops.length && index < 0; i++) {
    if (stops[i] === el) index = i;
  }
  // From an element that is no stop itself: to the one behind or before it.
  if (index < 0) {
    for (let i = 0; i < stops.length; i++) {
      if (el.compareDocumentPosition(stops[i]) & Node.DOCUMENT_POSITION_PRECEDING) index = i;
    }
    if (isBackwards) index++;
  }
  const next = stops[(index + (isBackwards ? -1 : 1) + stops.length) % stops.length];
  focus(next);
  scrollIntoView(next, { block: "nearest", behavior: "instant" });
  return ` (focus moved to ${describe(next)})`;
}

function collectStops(root, stops) {
  const all = queryAll(root, "*");
  for (let i = 0; i < all.length; i++) {
    const el = all[i];
    if (matches(el, focusable) && el.tabIndex >= 0 && !matches(el, ":disabled") && isVisible(el)) {
      stops[stops.length] = el;
    }
    if (shadowOf(el)) collectStops(shadowOf(el), stops);
  }
}

function backspace(el) {
  if (isEditable(el)) edit("delete");
  else if (isField(el))
    write(el, Array.from(el.value).slice(0, -1).join(""), "deleteContentBackward", null);
}

function insert(el, character) {
  if (isEditable(el)) edit("insertText", character);
  else write(el, el.value + character, "insertText", character);
}

function scrollBy(pressed) {
  const page = window.innerHeight * 0.85;
  const steps = {
    __proto__: null,
    ArrowUp: [0, -40],
    ArrowDown: [0, 40],
    ArrowLeft: [-40, 0],
    ArrowRight: [40, 0],
    PageUp: [0, -page],
    PageDown: [0, page],
    " ": [0, pressed.shiftKey ? -page : page],
  };
  const step = steps[pressed.key];
  if (step) window.scrollBy({ left: step[0], top: step[1], behavior: "instant" });
  else if (pressed.key === "Home") window.scrollTo({ top: 0, behavior: "instant" });
  else if (pressed.key === "End") {
    window.scrollTo({ top: scrollingElementOf(document).scrollHeight, behavior: "instant" });
  }
}

// What came of it, for the answer.
function perform(el, pressed, isPrintable) {
  if (pressed.key === "Enter") return enter(el);
  if (pressed.key === "Tab") return moveFocus(el, pressed.shiftKey);
  if (pressed.key === " " && isToggledBySpace(el)) {
    el.click();
    return "";
  }
  const takesText = isField(el) || isEditable(el);
  if (takesText && pressed.key === "Backspace") backspace(el);
  else if (takesText && isPrintable)
    insert(el, pressed.shiftKey ? pressed.key.toUpperCase() : pressed.key);
  else if (!takesText && tagOf(el) !== "SELECT") scrollBy(pressed);
  return "";
}

function press({ ref, selector, key }) {
  const el = find(ref, selector) ?? focusedElement() ?? bodyOf(document);
  if (el !== focusedElement()) focus(el);
  const pressed = parseKey(key);
  const name = describe(el);
  const isPrintable = Array.from(pressed.key).length === 1 && !pressed.ctrlKey && !pressed.metaKey;
  let isFree = fireKey(el, "keydown", { ...pressed, which: pressed.keyCode });
  let note = "";
  if (isFree) {
    if (isPrintable || pressed.key === "Enter") {
      const charCode = pressed.key === "Enter" ? 13 : pressed.key.codePointAt(0);
      isFree = fireKey(el, "keypress", {
        ...pressed,
        charCode,
        keyCode: charCode,
        which: charCode,
      });
    }
    if (isFree) note = perform(el, pressed, isPrintable);
  }
  if (!isFree) note = " (the page handled it)";
  fireKey(el, "keyup", { ...pressed, which: pressed.keyCode });
  return `Pressed ${key} on ${name}${note}`;
}
