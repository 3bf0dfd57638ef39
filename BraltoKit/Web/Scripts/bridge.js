// The program's side door into a document: runs its functions and carries their results out.
// Runs first in every document. What it needs of the page's world it takes before the page can
// change it. `braltoKey` is known to the program and to the functions in this file alone.
// `braltoIsFirst` is false in a document that was there before.
/* global braltoKey, braltoIsFirst */

const braltoSay = console.debug.bind(console);
const braltoPost = (kind, head, text) => braltoSay(`\x01${braltoKey}${kind}${head}\n${text}`);

if (self === top) {
  const LARGEST_RESULT = 16 * 1024 * 1024;
  const { stringify, parse } = JSON;
  const { apply } = Reflect;
  const { defineProperty, freeze } = Object;
  const toText = String;
  const DocumentNode = Node;
  const requestFrame = requestAnimationFrame.bind(self);
  const isNode = (value) =>
    typeof value === "object" && value !== null && value instanceof DocumentNode;

  const answer = (id, value) => {
    if (value === undefined) return braltoPost("u", id, "");
    let text;
    try {
      text = isNode(value) ? undefined : stringify(value);
    } catch {
      text = undefined;
    }
    if (text === undefined) return braltoPost("x", id, "");
    if (text.length > LARGEST_RESULT)
      return refuse(id, new RangeError("The result is larger than 16 MB."));
    return braltoPost("v", id, text);
  };

  const refuse = (id, error) => {
    let name = "";
    let message;
    try {
      const isError = typeof error === "object" && error !== null && "message" in error;
      name = isError ? toText(error.name) : "";
      message = toText(isError ? error.message : error);
    } catch {
      message = "An error without a text";
    }
    // As strings: an object may have a form of the page's making.
    braltoPost("e", id, `[${stringify(name)},${stringify(message)}]`);
  };

  const door = freeze({
    // Calls the function with the arguments, which are a list as JSON, and answers once it is done.
    run: async (id, work, list) => {
      try {
        answer(id, await apply(work, undefined, parse(list)));
      } catch (error) {
        refuse(id, error);
      }
    },
    // Answers once what the document shows now has been drawn.
    frame: (id) => requestFrame(() => requestFrame(() => braltoPost("v", id, "true"))),
  });
  const open = (key) => (key === braltoKey ? door : undefined);
  defineProperty(self, Symbol.for("bralto"), { value: open });
  if (braltoIsFirst) braltoPost("h", "", location.href);
}
