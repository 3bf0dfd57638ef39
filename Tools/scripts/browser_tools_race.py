#!/usr/bin/env python3
"""The agent's browser tools against another server of such tools, on one page and in one run.

    browser_tools_race.py [FOLDER]

Ours drive the release build's own window under Xvfb. The other is @playwright/mcp from the npm
registry with Debian's Chromium, installed into FOLDER (build/node/race). Both take the same steps
in turn. Printed are medians in milliseconds, characters of an answer, and the ratios; times of two
runs are not to be compared. Needs Xvfb, openbox, dbus-run-session, node, npm and chromium.
"""
import http.server
import json
import os
import pathlib
import re
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = ROOT / "build/release/Bralto.app/Contents/MacOS/Bralto"
ROWS = 1000  # of five elements

PAGE = (
    "<!doctype html><meta charset=utf-8><title>Stations</title><h1>Stations</h1>"
    "<label>Name <input id=name></label> <button id=count onclick=\"this.dataset.n="
    "1+(+this.dataset.n||0)\">Count</button><table>"
    + "".join(
        f"<tr><td>Station {row}</td><td><a href='/station/{row}'>Open {row}</a></td>"
        f"<td>{row * 7 % 300 / 100:.2f} m</td></tr>"
        for row in range(ROWS)
    )
    + "</table>"
)


class Site(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = PAGE.encode() if self.path == "/" else b""
        self.send_response(200 if body else 404)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Server:
    """A tools' server on standard input and output."""

    def __init__(self, command, **options):
        self.process = subprocess.Popen(
            command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, **options
        )
        self.last = 0
        self.ask("initialize", {"protocolVersion": "2025-06-18", "capabilities": {},
                                "clientInfo": {"name": "race", "version": "1"}})
        self.tell({"jsonrpc": "2.0", "method": "notifications/initialized"})

    def tell(self, message):
        self.process.stdin.write(json.dumps(message) + "\n")
        self.process.stdin.flush()

    def ask(self, method, params):
        self.last += 1
        self.tell({"jsonrpc": "2.0", "id": self.last, "method": method, "params": params})
        while True:
            answer = json.loads(self.process.stdout.readline())
            if answer.get("id") == self.last:
                return answer["result"]

    def call(self, tool, arguments):
        began = time.perf_counter()
        result = self.ask("tools/call", {"name": tool, "arguments": arguments})
        took = (time.perf_counter() - began) * 1000
        texts = [item["text"] for item in result["content"] if item["type"] == "text"]
        if result.get("isError"):
            sys.exit(f"{tool} {arguments}: {texts}")
        return took, "\n".join(texts)

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def ours(url):
    """What each step is called with, by name."""
    return {
        "load": ("navigate", {"url": url}),
        "snapshot": ("snapshot", {"maxChars": 200000}),
        "click": ("click", {"selector": "#count"}),
        "type": ("type", {"selector": "#name", "text": "Mill Creek"}),
        "press": ("press", {"key": "Home"}),
        "evaluate": ("evaluate", {"expression": "document.title"}),
        "screenshot": ("screenshot", {}),
    }


def theirs(url):
    return {
        "load": ("browser_navigate", {"url": url}),
        "snapshot": ("browser_snapshot", {}),
        "click": ("browser_click", {"element": "Count", "target": "#count"}),
        "type": ("browser_type", {"element": "Name", "target": "#name", "text": "Mill Creek"}),
        "press": ("browser_press_key", {"key": "Home"}),
        "evaluate": ("browser_evaluate", {"function": "() => document.title"}),
        "screenshot": ("browser_take_screenshot", {"type": "png"}),
    }


def installed(folder):
    command = folder / "node_modules/@playwright/mcp/cli.js"
    if not command.exists():
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "package.json").write_text("{}")
        subprocess.run(["npm", "install", "--silent", "@playwright/mcp"], cwd=folder, check=True)
    return command


def until(condition, what):
    for _ in range(300):
        if condition():
            return
        time.sleep(0.1)
    sys.exit(f"{what} did not come")


def race(folder):
    site = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Site)
    threading.Thread(target=site.serve_forever, daemon=True).start()
    url = f"http://127.0.0.1:{site.server_port}/"

    home = pathlib.Path(tempfile.mkdtemp(prefix="bralto-race-"))
    project = home / "project"
    project.mkdir()
    (home / "run").mkdir(mode=0o700)
    environment = dict(os.environ, HOME=str(home), XDG_RUNTIME_DIR=str(home / "run"),
                       QT_QPA_PLATFORM="xcb")
    read, write = os.pipe()
    display = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-nolisten", "tcp"],
        pass_fds=[write], stderr=subprocess.DEVNULL)
    environment["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
    manager = subprocess.Popen(["openbox"], env=environment, stderr=subprocess.DEVNULL)
    window = subprocess.Popen([PROGRAM, project], env=environment, stderr=subprocess.DEVNULL)
    servers = {}
    try:
        control = home / "Library/Application Support/Bralto/control"
        until(lambda: control.is_dir() and any(control.iterdir()), "the window")
        servers["ours"] = Server([PROGRAM, "--mcp"], env=environment, cwd=project)
        servers["theirs"] = Server(
            ["node", installed(folder), "--headless", "--isolated", "--executable-path",
             "/usr/bin/chromium"] + (["--no-sandbox"] if os.geteuid() == 0 else []),
            cwd=home, env=dict(os.environ, HOME=str(home)), stderr=subprocess.DEVNULL)
        steps = {"ours": ours(url), "theirs": theirs(url)}
        servers["ours"].call("open", {"url": url})
        times = {(who, step): [] for who in servers for step in steps[who]}
        sizes = {}
        for _ in range(10):
            for step in steps["ours"]:
                for who, server in servers.items():
                    took, text = server.call(*steps[who][step])
                    times[who, step].append(took)
                    sizes[who, step] = text_size(who, step, text, home)
        print(f"{'step':<12}{'ours ms':>9}{'theirs ms':>11}{'ratio':>7}"
              f"{'ours chars':>12}{'theirs chars':>14}")
        for step in steps["ours"]:
            mine, other = (statistics.median(times[who, step]) for who in ("ours", "theirs"))
            print(f"{step:<12}{mine:>9.1f}{other:>11.1f}{mine / other:>7.2f}"
                  f"{sizes['ours', step]:>12}{sizes['theirs', step]:>14}")
    finally:
        for server in servers.values():
            server.end()
        for process in (window, manager, display):
            process.send_signal(signal.SIGTERM)
            process.wait()


def text_size(who, step, text, home):
    """Characters, with those of a file that the answer only names."""
    named = re.search(r"\]\((\S+\.yml)\)", text) if who == "theirs" else None
    path = home / named.group(1) if named else None
    return len(text) + (len(path.read_text()) if path and path.exists() else 0)


if __name__ == "__main__":
    if len(sys.argv) > 2 or "--help" in sys.argv:
        sys.exit(__doc__)
    if not os.environ.get("DBUS_SESSION_BUS_ADDRESS"):
        os.execvp("dbus-run-session", ["dbus-run-session", "--", sys.executable, *sys.argv])
    race(pathlib.Path(sys.argv[1]) if len(sys.argv) == 2 else ROOT / "build/node/race")
