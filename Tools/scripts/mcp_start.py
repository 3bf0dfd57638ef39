#!/usr/bin/env python3
"""Times how soon `bralto --mcp` answers and what it takes:

    cmake --build --preset release --target Bralto
    Tools/scripts/mcp_start.py [EXECUTABLE]

From the start of the process to its answer to `initialize`, next to `cat`, which answers a line with
itself; the memory that is resident then; and the round trip of `tabs` through the control socket of a
window that answers at once. Medians, in turn, so that whatever else the machine does hits all alike.
"""

import hashlib
import json
import os
import pathlib
import socket
import statistics
import subprocess
import sys
import tempfile
import threading
import time

ROUNDS = 101
CALLS = 1000
root = pathlib.Path(__file__).resolve().parents[2]
bralto = sys.argv[1] if len(sys.argv) > 1 else str(root / "build/release/Bralto.app/Contents/MacOS/Bralto")

INITIALIZE = {"jsonrpc": "2.0", "id": 0, "method": "initialize", "params": {"protocolVersion": "2025-11-25", "capabilities": {}}}
TABS = {"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {"name": "tabs", "arguments": {}}}


def line(message):
    return json.dumps(message).encode() + b"\n"


class Process:
    def __init__(self, command, home, project):
        environment = {**os.environ, "HOME": home}
        environment.pop("BRALTO_PROJECT", None)
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=project, env=environment)

    def ask(self, message):
        self.process.stdin.write(line(message))
        self.process.stdin.flush()
        return self.process.stdout.readline()

    def status(self, key):
        """Kilobytes."""
        for entry in open(f"/proc/{self.process.pid}/status"):
            if entry.startswith(key + ":"):
                return int(entry.split()[1])

    def proportional(self):
        """Kilobytes, shared pages divided among those who share them."""
        for entry in open(f"/proc/{self.process.pid}/smaps_rollup"):
            if entry.startswith("Pss:"):
                return int(entry.split()[1])

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def serve(listener):
    """The window: one connection a call, as the server makes them."""
    answer = line({"content": [{"type": "text", "text": "No browser tabs open. Use open to load a page."}], "isError": False})
    while True:
        connection, _ = listener.accept()
        with connection:
            connection.recv(65536)
            connection.sendall(answer)


def start(command, home, project):
    """Milliseconds until the first answer, and the process."""
    began = time.perf_counter()
    process = Process(command, home, project)
    assert process.ask(INITIALIZE)
    return (time.perf_counter() - began) * 1000, process


def main():
    with tempfile.TemporaryDirectory() as home:
        project = os.path.join(os.path.realpath(home), "project")
        control = os.path.join(home, "Library/Application Support/Bralto/control")
        os.makedirs(project)
        os.makedirs(control)
        listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        listener.bind(os.path.join(control, hashlib.sha256(project.encode()).hexdigest()[:12] + ".sock"))
        listener.listen(16)
        threading.Thread(target=serve, args=(listener,), daemon=True).start()

        times = {"bralto": [], "cat": []}
        for _ in range(ROUNDS):
            for name, command in (("bralto", [bralto, "--mcp"]), ("cat", ["cat"])):
                taken, process = start(command, home, project)
                times[name].append(taken)
                if name == "bralto":
                    memory = {"resident": process.status("VmRSS"), "anonymous": process.status("RssAnon"), "proportional": process.proportional()}
                process.end()

        _, process = start([bralto, "--mcp"], home, project)
        calls = []
        for _ in range(CALLS):
            began = time.perf_counter()
            assert b"No browser tabs" in process.ask(TABS)
            calls.append((time.perf_counter() - began) * 1000)
        process.end()

    medians = {name: statistics.median(taken) for name, taken in times.items()}
    print(f"from the start to the answer: {medians['bralto']:.1f} ms, {medians['bralto'] / medians['cat']:.1f} times cat's {medians['cat']:.1f} ms")
    print("memory then: " + ", ".join(f"{kind} {kilobytes / 1024:.1f} MB" for kind, kilobytes in memory.items()))
    print(f"round trip of tabs: median {statistics.median(calls):.2f} ms, 99 of 100 {sorted(calls)[len(calls) * 99 // 100]:.2f} ms")


if __name__ == "__main__":
    main()
