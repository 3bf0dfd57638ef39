// Tells the program what a document writes to its console, and what goes wrong in it.
// Runs after bridge.js in every document, before any script of the page.
/* global braltoPost */

if (!window.__braltoConsole) {
  Object.defineProperty(window, "__braltoConsole", { value: true });
  const LONGEST_TEXT = 4000;
  const OWN_SCRIPT = "bralto-eval-";
  const { stringify } = JSON;
  const OwnElement = Element;
  const OwnError = Error;
  const OwnErrorEvent = ErrorEvent;

  const formatError = (error) => {
    const head = `${error.name}: ${error.message}`;
    const stack = error.stack;
    if (typeof stack !== "string" || !stack) return head;
    return stack.startsWith(String(error.name)) ? stack : `${head}\n${stack}`;
  };

  const format = (value) => {
    if (typeof value === "string") return value;
    try {
      if (value instanceof OwnError) return formatError(value);
      const text = stringify(value);
      return text === undefined ? String(value) : text;
    } catch {
      try {
        return String(value);
      } catch {
        return "[object]";
      }
    }
  };

  const post = (level, args) => {
    try {
      braltoPost("c", level, args.map(format).join(" ").slice(0, LONGEST_TEXT));
    } catch {
      // The page goes on whatever becomes of its message.
    }
  };

  for (const level of ["log", "info", "warn", "error", "debug"]) {
    const original = console[level];
    console[level] = (...args) => {
      post(level, args);
      original.apply(console, args);
    };
  }

  addEventListener(
    "error",
    (event) => {
      const target = event.target;
      if (target instanceof OwnElement) {
        const source = target.src || target.href || target.data || "";
        post("error", [`Failed to load ${target.tagName.toLowerCase()} ${source}`]);
        return;
      }
      if (!(event instanceof OwnErrorEvent)) return;
      // An error in a script of another origin: the engine knows more than it says here.
      if (event.isTrusted && !event.filename && !event.error) {
        braltoPost("m", "", "");
        return;
      }
      if (event.filename.startsWith(OWN_SCRIPT)) return;
      const message = String(event.message).replace(/^Uncaught /, "");
      const text = (event.error && event.error.stack) || message;
      const place = event.filename ? ` (${event.filename}:${event.lineno}:${event.colno})` : "";
      post("error", [`Uncaught ${text}${place}`]);
    },
    true,
  );

  addEventListener("unhandledrejection", (event) => {
    const reason = event.reason;
    const stack = reason instanceof OwnError ? reason.stack : "";
    if (stack && stack.includes(OWN_SCRIPT)) return;
    post("error", ["Unhandled promise rejection:", reason]);
  });
}
