// What the test plays and how it is told: a project's window, a home folder, the report.
import { createHash } from "node:crypto";
import { mkdirSync, mkdtempSync, realpathSync, renameSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";

/// Gone when the process ends.
export function temporaryHome() {
    const home = realpathSync(mkdtempSync(join(tmpdir(), "bralto-mcp-")));
    process.on("exit", () => rmSync(home, { recursive: true, force: true }));
    return home;
}

/// All lines of a stream, at its end.
export async function lines(stream) {
    let text = "";
    for await (const piece of stream.setEncoding("utf8"))
        text += piece;
    return text.split("\n").slice(0, -1);
}

/// The control socket of a project, answered by `answer(request)`.
export class FakeWindow {
    static hangUp = Symbol("hangUp");
    static raw = (line) => ({ [rawLine]: line });

    #path;
    #server;
    #requests = [];
    answer = () => ({ content: [], isError: false });

    constructor(home, project) {
        const directory = `${home}/Library/Application Support/Bralto/control`;
        mkdirSync(directory, { recursive: true, mode: 0o700 });
        const digest = createHash("sha256").update(project).digest("hex").slice(0, 12);
        this.#path = `${directory}/${digest}.sock`;
    }

    open() {
        this.#server = createServer((connection) => this.#serve(connection));
        return new Promise((resolve) => this.#server.listen(this.#path, resolve));
    }

    /// Node removes the socket with its server; a program that crashed leaves it there.
    close({ leavesSocket = false } = {}) {
        if (leavesSocket)
            renameSync(this.#path, `${this.#path}.left`);
        this.#server.close();
        if (leavesSocket)
            renameSync(`${this.#path}.left`, this.#path);
    }

    removeSocket() {
        rmSync(this.#path);
    }

    /// The requests since the last time.
    takeRequests() {
        return this.#requests.splice(0);
    }

    #serve(connection) {
        let text = "";
        connection.setEncoding("utf8");
        connection.on("error", () => {});
        connection.on("data", (piece) => {
            text += piece;
            const whole = text.split("\n");
            text = whole.pop();
            for (const line of whole)
                this.#answer(connection, JSON.parse(line));
        });
    }

    #answer(connection, request) {
        this.#requests.push(request);
        const answer = this.answer(request);
        if (answer === FakeWindow.hangUp)
            connection.destroy();
        else
            connection.write(`${answer[rawLine] ?? JSON.stringify(answer)}\n`);
    }
}

const rawLine = Symbol("rawLine");

const escaped = (text) => text.replace(/[<>&"\x00-\x1f]/g, (character) => `&#${character.codePointAt(0)};`)
    .replace(/&#(?!9;|10;|13;)(?:\d|[12]\d|3[01]);/g, " ");

/// Cases that run one after the other, and a report like that of GoogleTest.
export class Tests {
    #name;
    #cases = [];

    constructor(name) {
        this.#name = name;
    }

    add(name, body) {
        this.#cases.push({ name, body });
    }

    /// Whether all passed.
    async run(report) {
        for (const test of this.#cases) {
            try {
                await test.body();
            } catch (error) {
                test.failure = String(error?.stack ?? error);
                console.log(`[  FAILED  ] ${this.#name}.${test.name}\n${test.failure}`);
            }
        }
        const failures = this.#cases.filter(({ failure }) => failure !== undefined).length;
        console.log(`${this.#cases.length} cases, ${failures} failed`);
        if (report)
            this.#write(report, failures);
        return failures === 0;
    }

    #write(report, failures) {
        const counts = `tests="${this.#cases.length}" failures="${failures}" disabled="0" errors="0"`;
        const cases = this.#cases.map(({ name, failure }) => failure === undefined
            ? `    <testcase name="${name}"/>`
            : `    <testcase name="${name}"><failure message="${escaped(failure)}"/></testcase>`);
        mkdirSync(dirname(report), { recursive: true });
        writeFileSync(report, [
            '<?xml version="1.0" encoding="UTF-8"?>', `<testsuites ${counts} name="AllTests">`,
            `  <testsuite name="${this.#name}" ${counts}>`, ...cases, "  </testsuite>", "</testsuites>", "",
        ].join("\n"));
    }
}
