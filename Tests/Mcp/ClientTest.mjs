// The protocol's own client against `bralto --mcp`, and a window's control socket that is played here.
//
//     node ClientTest.mjs BRALTO NODE_PACKAGES REPORT
//
// The report has the form of the other test programs'.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { existsSync, mkdirSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { fileURLToPath } from "node:url";
import { FakeWindow, Tests, lines, temporaryHome } from "./Harness.mjs";

const [bralto, packages, report] = process.argv.slice(2);
if (!existsSync(`${packages}/node_modules`)) {
    console.error(`${packages} is missing: ./test.sh installs it, from Tests/Mcp/package-lock.json.`);
    process.exit(1);
}
const require = createRequire(`${packages}/package.json`);
const { Client } = require("@modelcontextprotocol/sdk/client/index.js");
const { StdioClientTransport } = require("@modelcontextprotocol/sdk/client/stdio.js");
const { ResultSchema } = require("@modelcontextprotocol/sdk/types.js");
const Ajv = require("ajv").default;
const Ajv2020 = require("ajv/dist/2020.js").default;

const catalogue = JSON.parse(readFileSync(
    fileURLToPath(new URL("../Fixtures/Mcp/tools.json", import.meta.url)), "utf8"));
const notRunning = "Bralto isn’t running for this project. Open this project in Bralto first: " +
    "these tools control the browser inside its window.";

/// A value that the schema of one parameter takes, and one that it doesn't.
const samples = {
    string: { good: "a \"quoted\" / “text” ✓\n", bad: 7 },
    number: { good: 12.5, bad: "12.5" },
    boolean: { good: true, bad: "true" },
};
const good = (property) => property.enum ? property.enum[0] : samples[property.type].good;
const bad = (property) => property.enum ? "no such choice" : samples[property.type].bad;

const fullArguments = (tool) => Object.fromEntries(
    Object.entries(tool.inputSchema.properties).map(([name, property]) => [name, good(property)]));

const home = temporaryHome();
const project = `${home}/web shop`;
mkdirSync(project);
const window = new FakeWindow(home, project);
const environment = { ...process.env, HOME: home };
delete environment.BRALTO_PROJECT;

/// Runs `use` with a client that is connected to a server of its own, which says nothing on
/// standard error, and has ended afterwards.
async function withClient(use, options = {}) {
    const transport = new StdioClientTransport({
        command: bralto, args: ["--mcp"], env: environment, cwd: options.cwd ?? project, stderr: "pipe",
    });
    let complaints = "";
    transport.stderr.on("data", (data) => { complaints += data; });
    const client = new Client({ name: "bralto-test", version: "1.0.0" });
    const failures = [];
    client.onerror = (error) => failures.push(error);
    await client.connect(transport);
    try {
        await use(client, transport);
    } finally {
        await client.close();
    }
    assert.deepEqual(failures, []);
    assert.equal(complaints, "");
}

/// What the server writes for `input`, line by line.
async function converse(input) {
    const child = spawn(bralto, ["--mcp"], { env: environment, cwd: project, stdio: ["pipe", "pipe", "inherit"] });
    const ended = new Promise((resolve, reject) => child.on("exit", resolve).on("error", reject));
    child.stdin.end(input);
    const answers = await lines(child.stdout);
    assert.equal(await ended, 0);
    return answers.map((line) => JSON.parse(line));
}

/// Refused with that code and message by the server itself.
async function refused(promise, code, message) {
    await assert.rejects(promise, (error) => {
        assert.equal(error.code, code);
        assert.equal(error.message, `MCP error ${code}: ${message}`);
        return true;
    });
}

const failed = (text) => ({ content: [{ type: "text", text }], isError: true });

const tests = new Tests("McpClientTest");

tests.add("ConnectsAndIsIntroduced", () => withClient(async (client, transport) => {
    assert.equal(client.getServerVersion().name, "bralto");
    assert.equal(client.getServerVersion().title, "Bralto Browser");
    assert.match(client.getServerVersion().version, /^\d+\.\d+\.\d+$/);
    assert.deepEqual(client.getServerCapabilities(), { tools: { listChanged: false } });
    assert.match(client.getInstructions(), /^These tools drive the browser tabs .* \(e12…\) .* in the window\.$/);
    assert.equal(transport._protocolVersion ?? "2025-11-25", "2025-11-25");
}));

tests.add("ListsTheCatalogue", () => withClient(async (client) => {
    const { tools, nextCursor } = await client.listTools();
    assert.deepEqual(tools, catalogue);
    assert.equal(nextCursor, undefined);
    assert.deepEqual((await client.listTools({})).tools, catalogue);
}));

for (const tool of catalogue) {
    tests.add(`Describes_${tool.name}_ByASchemaThatTakesRightArgumentsOnly`, () => withClient(async (client) => {
        const { tools } = await client.listTools();
        const { inputSchema } = tools.find(({ name }) => name === tool.name);
        for (const Reader of [Ajv, Ajv2020]) {
            const reader = new Reader({ strict: true, allErrors: true });
            assert.ok(reader.validateSchema(inputSchema), reader.errorsText());
            const takes = reader.compile(inputSchema);
            assert.ok(takes(fullArguments(tool)), reader.errorsText(takes.errors));
            for (const [name, property] of Object.entries(inputSchema.properties))
                assert.ok(!takes({ ...fullArguments(tool), [name]: bad(property) }), name);
            const required = inputSchema.required ?? [];
            assert.equal(takes({}), required.length === 0);
            for (const name of required) {
                const { [name]: _, ...others } = fullArguments(tool);
                assert.ok(!takes(others), name);
            }
        }
    }));

    tests.add(`Hands_${tool.name}_ToTheWindow`, () => withClient(async (client) => {
        window.answer = ({ tool: name }) => ({ content: [{ type: "text", text: `${name}: “done” a/b` }], isError: false });
        const result = await client.callTool({ name: tool.name, arguments: fullArguments(tool) });
        assert.deepEqual(result, { content: [{ type: "text", text: `${tool.name}: “done” a/b` }], isError: false });
        assert.deepEqual(window.takeRequests(), [{ tool: tool.name, arguments: fullArguments(tool) }]);

        window.answer = () => failed("Pass what is missing.");
        assert.deepEqual(await client.callTool({ name: tool.name }), failed("Pass what is missing."));
        assert.deepEqual(window.takeRequests(), [{ tool: tool.name, arguments: {} }]);
    }));
}

tests.add("CarriesAPicture", () => withClient(async (client) => {
    const image = { type: "image", data: Buffer.alloc(3_000_000, "\x89PNG", "latin1").toString("base64"), mimeType: "image/png" };
    const text = { type: "text", text: "Screenshot of tab 12345678: Title — http://localhost:3000/" };
    window.answer = () => ({ content: [image, text], isError: false });
    assert.deepEqual(await client.callTool({ name: "screenshot" }), { content: [image, text], isError: false });
}));

tests.add("AnswersCallsThatAreMadeAtOnceEachWithItsOwn", () => withClient(async (client) => {
    window.answer = ({ arguments: { expression } }) => ({ content: [{ type: "text", text: expression }], isError: false });
    const results = await Promise.all(Array.from({ length: 100 }, (_, number) =>
        client.callTool({ name: "evaluate", arguments: { expression: `${number}` } })));
    assert.deepEqual(results.map(({ content }) => content[0].text), Array.from({ length: 100 }, (_, number) => `${number}`));
    window.takeRequests();
}));

tests.add("TakesACallThatAsksForProgress", () => withClient(async (client) => {
    window.answer = () => ({ content: [], isError: false });
    const result = await client.callTool({ name: "tabs" }, undefined, { onprogress: () => {} });
    assert.deepEqual(result, { content: [], isError: false });
    window.takeRequests();
}));

tests.add("FindsTheWindowFromBelowTheProject", async () => {
    mkdirSync(`${project}/src/deep`, { recursive: true });
    window.answer = () => ({ content: [], isError: false });
    await withClient(async (client) => {
        assert.deepEqual(await client.callTool({ name: "tabs" }), { content: [], isError: false });
    }, { cwd: `${project}/src/deep` });
    window.takeRequests();
});

tests.add("AnswersAPing", () => withClient(async (client) => {
    assert.deepEqual(await client.ping(), {});
}));

tests.add("RefusesAToolThatItDoesNotHave", () => withClient((client) =>
    refused(client.callTool({ name: "nope" }), -32602, "Unknown tool: nope")));

tests.add("RefusesACallWithoutAToolsName", () => withClient(async (client) => {
    await refused(client.request({ method: "tools/call", params: {} }, ResultSchema), -32602, "tools/call needs a tool name");
    await refused(client.request({ method: "tools/call" }, ResultSchema), -32602, "tools/call needs a tool name");
}));

tests.add("RefusesMethodsThatItDoesNotKnow", () => withClient(async (client) => {
    for (const method of ["resources/list", "prompts/list", "server/discover", "completion/complete"])
        await refused(client.request({ method }, ResultSchema), -32601, `Method not found: ${method}`);
}));

tests.add("GivesAResultWithoutContentAnEmptyOne", () => withClient(async (client) => {
    window.answer = () => ({ isError: true });
    assert.deepEqual(await client.callTool({ name: "tabs" }), { content: [], isError: true });
    window.takeRequests();
}));

tests.add("TellsTheAgentOfAnAnswerThatIsNone", () => withClient(async (client) => {
    window.answer = () => ["no object"];
    assert.deepEqual(await client.callTool({ name: "tabs" }), failed("Bralto sent back something unexpected"));
    window.answer = () => FakeWindow.raw("no JSON");
    const { content, isError } = await client.callTool({ name: "tabs" });
    assert.ok(isError && content[0].text.length > 0);
    window.takeRequests();
}));

tests.add("TellsTheAgentThatTheWindowHungUp", () => withClient(async (client) => {
    window.answer = () => FakeWindow.hangUp;
    assert.deepEqual(await client.callTool({ name: "tabs" }), failed(`${notRunning} (Bralto didn’t answer in time)`));
    window.takeRequests();
}));

tests.add("TellsTheAgentThatThereIsNoWindow", () => withClient(async (client) => {
    window.close({ leavesSocket: true });
    assert.deepEqual(await client.callTool({ name: "tabs" }), failed(`${notRunning} (Connection refused)`));
    window.removeSocket();
    assert.deepEqual(await client.callTool({ name: "tabs" }), failed(notRunning));

    await window.open();
    window.answer = () => ({ content: [], isError: false });
    assert.deepEqual(await client.callTool({ name: "tabs" }), { content: [], isError: false });
    window.takeRequests();
}));

tests.add("AnswersWhatAnAgentProbesBeforeItIntroducesItself", async () => {
    const probe = { jsonrpc: "2.0", id: "server-discover-probe-1", method: "server/discover", params: { _meta: { protocolVersion: "2026-07-28" } } };
    assert.deepEqual(await converse(`${JSON.stringify(probe)}\n`), [
        { jsonrpc: "2.0", id: "server-discover-probe-1", error: { code: -32601, message: "Method not found: server/discover" } },
    ]);
});

tests.add("AnswersWhatIsNoMessage", async () => {
    assert.deepEqual(await converse('nonsense\n17\n[{"id":1,"method":"ping"},{"method":"x"}]\n[{"method":"x"}]\n \t\r\n{"id":null,"method":"ping"}\n'), [
        { jsonrpc: "2.0", id: null, error: { code: -32700, message: "Parse error" } },
        { jsonrpc: "2.0", id: null, error: { code: -32600, message: "Invalid request" } },
        [{ jsonrpc: "2.0", id: 1, result: {} }],
    ]);
});

for (const version of ["2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"]) {
    tests.add(`Speaks_${version.replaceAll("-", "_")}`, async () => {
        const [answer] = await converse(`${JSON.stringify({ id: 0, method: "initialize", params: { protocolVersion: version } })}\n`);
        assert.equal(answer.result.protocolVersion, version);
    });
}

await window.open();
const passed = await tests.run(report);
window.close();
process.exit(passed ? 0 : 1);
