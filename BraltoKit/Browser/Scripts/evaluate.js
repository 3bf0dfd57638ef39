"use strict";
// Spells a value as JSON, written out by hand: a page may have replaced JSON.stringify, or taught
// arrays a spelling of their own.

function quote(text) {
  let quoted = '"';
  for (let i = 0; i < text.length; i++) {
    const unit = text.charCodeAt(i);
    if (unit === 34 || unit === 92) quoted += "\\" + text[i];
    else if (unit === 10) quoted += "\\n";
    else if (unit === 9) quoted += "\\t";
    else if (unit < 32) quoted += `\\u${unit.toString(16).padStart(4, "0")}`;
    else quoted += text[i];
  }
  return quoted + '"';
}

function spellNode(node) {
  if (!(node instanceof Element)) return quote((node.textContent ?? "").slice(0, 200));
  const tag = node.localName.toLowerCase();
  const id = node.getAttribute("id");
  return quote(`<${tag}${id ? `#${id}` : ""}> ${node.outerHTML.slice(0, 200)}`);
}

// Text, or undefined for what JSON leaves out.
function spellPart(value, seen) {
  switch (typeof value) {
    case "string":
      return quote(value);
    case "number":
      return Number.isFinite(value) ? String(value) : "null";
    case "boolean":
      return String(value);
    case "bigint":
      return quote(String(value));
    case "function":
      return quote(`[function ${value.name || "anonymous"}]`);
    case "object":
      return value === null ? "null" : spellObject(value, seen);
    default:
      return undefined;
  }
}

function spellObject(value, seen) {
  if (value instanceof Node) return spellNode(value);
  if (value instanceof Error) return quote(String(value.stack ?? value));
  if (seen.has(value)) return quote("[circular]");
  seen.add(value);
  if (Array.isArray(value)) return spellList(value, seen);
  if (typeof value.toJSON === "function") return spellPart(value.toJSON(), seen) ?? "null";
  if (value instanceof String || value instanceof Number || value instanceof Boolean) {
    return spellPart(value.valueOf(), seen);
  }
  let members = "";
  const keys = Object.keys(value);
  for (let i = 0; i < keys.length; i++) {
    const member = spellPart(value[keys[i]], seen);
    if (member !== undefined) members += `${members ? "," : ""}${quote(keys[i])}:${member}`;
  }
  return `{${members}}`;
}

function spellList(list, seen) {
  let items = "";
  for (let i = 0; i < list.length; i++) {
    items += `${i > 0 ? "," : ""}${spellPart(list[i], seen) ?? "null"}`;
  }
  return `[${items}]`;
}

function spell(value) {
  return spellPart(value, new Set()) ?? "undefined";
}
