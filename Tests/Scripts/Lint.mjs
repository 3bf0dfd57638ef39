// Checks the layout of all scripts that run in pages, and the code of those behind the tools.
//
//     node Lint.mjs NODE_PACKAGES SOURCES
//
// The tools' scripts run behind the prelude, in one function with it, so that is how they are read.
import { existsSync, readdirSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";

const [packages, sources] = process.argv.slice(2);
if (!existsSync(`${packages}/node_modules`)) {
  console.error(`${packages} is missing: ./test.sh installs it, from Tests/Scripts/package-lock.json.`);
  process.exit(1);
}
const require = createRequire(`${packages}/package.json`);
const { Linter } = require("eslint");
const prettier = require("prettier");

const layout = { parser: "babel", printWidth: 100 };
const pageGlobals =
  "window document location getComputedStyle getSelection setTimeout CSS URL Node NodeList Element Document " +
  "DocumentFragment EventTarget SVGElement HTMLElement HTMLDetailsElement HTMLFormElement HTMLSlotElement " +
  "Event MouseEvent PointerEvent KeyboardEvent InputEvent FocusEvent";
const config = {
  languageOptions: {
    ecmaVersion: 2022,
    sourceType: "script",
    globals: Object.fromEntries(pageGlobals.split(" ").map((name) => [name, "readonly"])),
  },
  rules: {
    "block-scoped-var": "error",
    "consistent-return": "error",
    eqeqeq: "error",
    "no-const-assign": "error",
    "no-dupe-keys": "error",
    "no-fallthrough": "error",
    "no-loss-of-precision": "error",
    "no-redeclare": "error",
    "no-shadow-restricted-names": "error",
    "no-undef": "error",
    "no-unreachable": "error",
    "no-unused-vars": "error",
    "no-useless-escape": "error",
    "no-var": "error",
    "prefer-const": "error",
    // A page may have replaced what all arrays iterate with.
    "no-restricted-syntax": [
      "error",
      "ForOfStatement",
      "ForInStatement",
      "ArrayPattern",
      ":matches(ArrayExpression, CallExpression, NewExpression) > SpreadElement",
    ],
    "use-isnan": "error",
    "valid-typeof": "error",
  },
};

let findings = 0;
function report(file, line, text) {
  console.error(`${file}:${line}: ${text}`);
  findings++;
}

async function checkLayout(path) {
  const text = readFileSync(path, "utf8");
  if ((await prettier.format(text, layout)) !== text) report(path, 1, "not as the formatter leaves it");
}

// Line breaks of `text`.
function linesOf(text) {
  return text.split("\n").length - 1;
}

function check(path, before, after) {
  const text = readFileSync(path, "utf8");
  const messages = new Linter().verify(before + text + after, config);
  const first = linesOf(before);
  const own = messages.filter((each) => each.line > first && each.line <= first + linesOf(text));
  for (const each of own) report(path, each.line - first, `${each.message} (${each.ruleId})`);
  return messages.filter((each) => each.line <= first);
}

const folder = `${sources}/BraltoKit/Browser/Scripts`;
const head = "(async function () {\n";
const prelude = readFileSync(`${folder}/prelude.js`, "utf8");
const scripts = readdirSync(folder).filter(
  (name) => name.endsWith(".js") && name !== "prelude.js" && name !== "evaluate.js",
);
const preludeFindings = new Map();
for (const script of scripts) {
  const name = script.replace(".js", "");
  for (const each of check(`${folder}/${script}`, head + prelude, `return await ${name}({});\n})();\n`)) {
    const key = `${each.line - 1}: ${each.message} (${each.ruleId})`;
    preludeFindings.set(key, (preludeFindings.get(key) ?? 0) + 1);
  }
}
for (const [key, count] of preludeFindings) {
  // What one script doesn't use another may.
  if (count === scripts.length || !key.includes("no-unused-vars")) report(`${folder}/prelude.js`, key, "");
}
check(`${folder}/evaluate.js`, head, "return spell(1);\n})();\n");

for (const module of ["Browser", "Web"]) {
  const place = `${sources}/BraltoKit/${module}/Scripts`;
  for (const name of readdirSync(place).filter((each) => each.endsWith(".js"))) {
    await checkLayout(`${place}/${name}`);
  }
}
process.exit(findings > 0 ? 1 : 0);
