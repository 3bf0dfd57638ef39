// Puts text into a field, so that the page's framework hears of it.

const typeless = {
  __proto__: null,
  button: 1,
  submit: 1,
  reset: 1,
  image: 1,
  file: 1,
  hidden: 1,
  checkbox: 1,
  radio: 1,
};

function isTextField(el) {
  const tag = tagOf(el);
  if (tag === "INPUT") return !typeless[el.type];
  // A field of a page's own making.
  return tag === "TEXTAREA" || (tag.includes("-") && typeof el.value === "string");
}

function choose(el, text) {
  const options = el.options;
  const wanted = text.toLowerCase();
  let option = null;
  for (let i = 0; i < options.length && !option; i++) {
    if (options[i].value === text || options[i].text.trim() === text) option = options[i];
  }
  for (let i = 0; i < options.length && !option; i++) {
    if (options[i].text.toLowerCase().includes(wanted)) option = options[i];
  }
  if (!option) {
    const names = [];
    for (let i = 0; i < options.length; i++) names[i] = options[i].text.trim();
    throw new Error(`No option "${text}" . Options: ${names.join(" | ")}`);
  }
  setValue(el, option.value);
  fireInput(el, "insertReplacementText", null);
  fireChange(el);
}

function rewrite(el, text, clear) {
  const selection = getSelection();
  selection.selectAllChildren(el);
  if (!clear) selection.collapseToEnd();
  if (edit("insertText", text)) return;
  if (clear) el.textContent = "";
  el.append(text);
  fireInput(el, "insertText", text);
}

function fill(el, text, clear) {
  const last = { key: Array.from(text).at(-1) };
  fireKey(el, "keydown", last);
  setValue(el, clear ? text : el.value + text);
  fireInput(el, "insertText", text);
  fireKey(el, "keyup", last);
  fireChange(el);
}

function pressEnter(el) {
  const enter = { key: "Enter", code: "Enter", keyCode: 13, which: 13 };
  const isFree = fireKey(el, "keydown", enter);
  fireKey(el, "keypress", enter);
  fireKey(el, "keyup", enter);
  if (!isFree || !(el.form instanceof HTMLFormElement)) return " and pressed Enter";
  HTMLFormElement.prototype.requestSubmit.call(el.form);
  return " and submitted the form";
}

function type({ ref, selector, text, submit, clear }) {
  const el = find(ref, selector) ?? focusedElement();
  if (!el || el === bodyOf(document)) {
    throw new Error("Pass a ref from snapshot or a CSS selector for the field.");
  }
  scrollIntoView(el, { block: "center", inline: "center", behavior: "instant" });
  focus(el);
  if (tagOf(el) === "SELECT") choose(el, text);
  else if (isEditable(el)) rewrite(el, text, clear);
  else if (isTextField(el)) fill(el, text, clear);
  else throw new Error(`${describe(el)} isn't a text field.`);
  const name = describe(el);
  return `Typed into ${name}${submit ? pressEnter(el) : ""}`;
}
