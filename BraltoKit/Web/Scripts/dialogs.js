// Lets a document ask the user without holding up the engine. The engine's own dialogs stop every
// page of the program until they are answered; a request that the document waits for stops only
// the document. Runs after bridge.js. Who knows `braltoAskKey` can ask, and no more.
/* global braltoAskKey */

{
  const LONGEST_TEXT = 10000;
  const { parse } = JSON;
  const { apply } = Reflect;
  const { open, send } = XMLHttpRequest.prototype;
  const readText = Object.getOwnPropertyDescriptor(XMLHttpRequest.prototype, "responseText").get;
  const Request = XMLHttpRequest;
  const encode = encodeURIComponent;
  // Half of a pair of code units has no encoding.
  const cut = (text) => encode(text.slice(0, LONGEST_TEXT).replace(/\p{Surrogate}/gu, "\ufffd"));

  // Frames of another origin have no dialogs; the engine says so.
  const mayAsk = () => {
    try {
      return self === top || Boolean(top.location.href);
    } catch {
      return false;
    }
  };

  // Undefined where the engine has to ask.
  const ask = (kind, text, suggestion) => {
    if (!mayAsk()) return undefined;
    try {
      const request = new Request();
      const address = `bralto-ask:${braltoAskKey}?${kind}&${cut(text)}&${cut(suggestion)}`;
      apply(open, request, ["GET", address, false]);
      apply(send, request, []);
      return parse(apply(readText, request, []));
    } catch {
      return undefined;
    }
  };

  const engine = { alert: self.alert, confirm: self.confirm, prompt: self.prompt };
  const own = {
    alert(message = "") {
      const text = `${message}`;
      if (!ask("alert", text, "")) apply(engine.alert, self, [text]);
    },
    confirm(message = "") {
      const text = `${message}`;
      const answer = ask("confirm", text, "");
      return answer ? answer[0] : apply(engine.confirm, self, [text]);
    },
    prompt(message = "", suggestion = "") {
      const text = `${message}`;
      const answer = ask("prompt", text, `${suggestion}`);
      if (!answer) return apply(engine.prompt, self, [text, `${suggestion}`]);
      return answer[0] ? answer[1] : null;
    },
  };
  self.alert = own.alert;
  self.confirm = own.confirm;
  self.prompt = own.prompt;
}
