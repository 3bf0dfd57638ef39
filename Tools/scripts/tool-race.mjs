// Our tools next to those of a well-known server that drives the system's Chromium: the same pages
// and steps, both through the protocol's own client, in one run.
//
//     node tool-race.mjs BUILD NODE_PACKAGES
//
// BUILD is a release build with the targets Bralto and bralto-tool-round-trips. NODE_PACKAGES is a
// folder in which `npm install @modelcontextprotocol/sdk @playwright/mcp` was run.
import { spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";

const [build, packages] = process.argv.slice(2).map((each) => resolve(each));
const require = createRequire(join(packages, "package.json"));
const { Client } = require("@modelcontextprotocol/sdk/client/index.js");
const { StdioClientTransport } = require("@modelcontextprotocol/sdk/client/stdio.js");

const home = mkdtempSync(join(tmpdir(), "tool-race-"));
const project = join(home, "project");
mkdirSync(project);

async function connect(command, args, env) {
  const client = new Client({ name: "race", version: "1" });
  await client.connect(
    new StdioClientTransport({ command, args, cwd: home, env: { ...process.env, ...env }, stderr: "ignore" }),
  );
  return client;
}

function textOf(result) {
  return result.content.map((each) => each.text ?? "").join("\n");
}

// What the answer costs an agent: the characters of its texts; a picture counts apart.
async function step(client, [tool, args]) {
  const start = performance.now();
  const result = await client.callTool({ name: tool, arguments: args });
  const time = performance.now() - start;
  const text = textOf(result);
  if (result.isError) throw new Error(`${tool}: ${text}`);
  return { time, characters: text.length, text };
}

async function measure(client, name, call, rounds = 7) {
  const times = [];
  let last;
  for (let round = 0; round <= rounds; round++) {
    last = await step(client, call);
    if (round > 0) times.push(last.time);
  }
  times.sort((a, b) => a - b);
  return { name, time: times[times.length >> 1], characters: last.characters };
}

function refOf(text, words) {
  const line = text.split("\n").find((each) => each.includes(words));
  return line.match(/\[ref=(\w+)\]/)[1];
}

// The steps, in the words of each server.
async function race(client, words, site) {
  const rows = [];
  await step(client, words.open(`${site}controls.html`));
  rows.push(await measure(client, "snapshot, small page", words.snapshot()));
  let ref = refOf((await step(client, words.snapshot())).text, '"Free"');
  rows.push(await measure(client, "click", words.click(ref)));
  rows.push(await measure(client, "type", words.type(ref, "hello")));
  rows.push(await measure(client, "press a key", words.press("a")));
  rows.push(await measure(client, "evaluate", words.evaluate("1 + 1")));
  rows.push(await measure(client, "screenshot", words.screenshot()));
  rows.push(await measure(client, "open a page", words.open(`${site}arrived.html`), 5));
  await step(client, words.open(`${site}large.html?5000`));
  rows.push(await measure(client, "snapshot, 5,000 elements", words.snapshot()));
  ref = refOf((await step(client, words.snapshot())).text, '"Details"');
  await step(client, words.open(`${site}large.html?50000`));
  rows.push(await measure(client, "snapshot, 50,000 elements", words.snapshot(), 3));
  return rows;
}

const ours = {
  open: (url) => ["navigate", { url }],
  snapshot: () => ["snapshot", {}],
  click: (ref) => ["click", { ref }],
  type: (ref, text) => ["type", { ref, text }],
  press: (key) => ["press", { key }],
  evaluate: (expression) => ["evaluate", { expression }],
  screenshot: () => ["screenshot", {}],
};
const theirs = {
  open: (url) => ["browser_navigate", { url }],
  snapshot: () => ["browser_snapshot", {}],
  click: (ref) => ["browser_click", { element: "it", target: ref }],
  type: (ref, text) => ["browser_type", { element: "it", target: ref, text }],
  press: (key) => ["browser_press_key", { key }],
  evaluate: (expression) => ["browser_evaluate", { function: `() => ${expression}` }],
  screenshot: () => ["browser_take_screenshot", {}],
};

const window = spawn(join(build, "bin/bralto-tool-round-trips"), ["--serve", home, project], {
  stdio: ["pipe", "pipe", "ignore"],
});
const site = await new Promise((tell) => window.stdout.once("data", (data) => tell(String(data).trim())));
try {
  const bralto = await connect(join(build, "Bralto.app/Contents/MacOS/Bralto"), ["--mcp"], { HOME: home, BRALTO_PROJECT: project });
  await step(bralto, ["open", { url: `${site}arrived.html` }]);
  const our = await race(bralto, ours, site);
  await bralto.close();

  const other = await connect(process.execPath, [
    join(packages, "node_modules/.bin/playwright-mcp"),
    "--headless",
    "--isolated",
    "--viewport-size=1280x800",
    "--executable-path=/usr/bin/chromium",
    ...(process.getuid() === 0 ? ["--no-sandbox"] : []),
  ]);
  const their = await race(other, theirs, site);
  await other.close();

  const head = ["step", "ours ms", "theirs ms", "ours chars", "theirs chars"];
  console.log(`${head[0].padEnd(28)}${head.slice(1).map((each) => each.padStart(13)).join("")}`);
  our.forEach((row, i) => {
    const figures = [row.time.toFixed(1), their[i].time.toFixed(1), row.characters, their[i].characters];
    console.log(`${row.name.padEnd(28)}${figures.map((each) => String(each).padStart(13)).join("")}`);
  });
} finally {
  window.stdin.end();
  window.kill();
  rmSync(home, { recursive: true, force: true });
}
