# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""Replays the recordings as 1, 10 and 100 units side by side, each in surroundings of its own, and writes what a unit
takes: processor time, and memory by its own pages.

usage: units.py --replay PROGRAM --seconds S --counts N,N,... --out FILE
"""

import argparse
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
RECORDINGS = [os.path.join(ROOT, "data", name) for name in ("outlets_1s.csv", "environment_1min.csv")]
PATIENCE = 300  # seconds until all units are active, and until each has ended


class Failure(Exception):
    """Something that a unit did not do; its text is for the user."""


class Unit:
    """A replay in its own surroundings; its output goes to a file."""

    def __init__(self, replay, output):
        self._output = output
        self._launcher = subprocess.Popen(
            [os.path.join(ROOT, "tools", "surroundings"), replay, "--now", "--loop", *RECORDINGS],
            stdout=open(output, "wb"),
            stderr=subprocess.STDOUT,
        )

    def printed(self, pattern):
        with open(self._output, encoding="utf-8", errors="replace") as file:
            return re.search(pattern, file.read())

    def wait_until_active(self, deadline):
        while not self.printed("region active"):
            if self._launcher.poll() is not None or time.monotonic() > deadline:
                with open(self._output, encoding="utf-8", errors="replace") as file:
                    raise Failure(f"a unit does not start: {file.read().strip()}")
            time.sleep(0.05)

    def processes(self, children):
        """Numbers of all processes of the unit, by name."""
        found, waiting = {}, [self._launcher.pid]
        while waiting:
            process = waiting.pop()
            waiting += children.get(process, [])
            found.setdefault(name_of(process), []).append(process)
        return found

    def end(self, children):
        for process in self.processes(children).get("qel-replay", []):
            os.kill(process, signal.SIGTERM)

    def wait(self):
        self._launcher.wait(PATIENCE)


def name_of(process):
    try:
        with open(f"/proc/{process}/comm", encoding="utf-8") as file:
            return file.read().strip()
    except OSError:
        return ""


def children_of_all():
    """Numbers of child processes by that of their parent."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                with open(f"/proc/{entry}/stat", encoding="utf-8") as file:
                    parent = int(file.read().rsplit(")", 1)[1].split()[1])
            except OSError:
                continue  # it has ended
            children.setdefault(parent, []).append(int(entry))
    return children


def processor_seconds(process):
    """Of all threads, to the nanosecond."""
    total = 0
    for thread in os.listdir(f"/proc/{process}/task"):
        with open(f"/proc/{process}/task/{thread}/schedstat", encoding="utf-8") as file:
            total += int(file.read().split()[0])
    return total / 1e9


def own_bytes(process):
    """Proportional share of the process's pages."""
    with open(f"/proc/{process}/smaps_rollup", encoding="utf-8") as file:
        return int(re.search(r"^Pss:\s+(\d+) kB", file.read(), re.MULTILINE).group(1)) * 1024


def measure(replay, count, seconds, folder):
    """What a unit takes on average while this many run."""
    deadline = time.monotonic() + PATIENCE
    units = []
    try:
        for number in range(count):
            units.append(Unit(replay, os.path.join(folder, f"{count}-{number}")))
        for unit in units:
            unit.wait_until_active(deadline)
        children = children_of_all()
        by_name = [unit.processes(children) for unit in units]
        writers = [process for names in by_name for process in names.get("qel-replay", [])]
        if len(writers) != count:
            raise Failure(f"{len(writers)} replays run instead of {count}")
        before = [processor_seconds(process) for process in writers]
        start = time.monotonic()
        time.sleep(seconds)
        elapsed = time.monotonic() - start
        after = [processor_seconds(process) for process in writers]
        memory = [own_bytes(process) for process in writers]
        buses = [own_bytes(process) for names in by_name for process in names.get("dbus-daemon", [])]
    finally:
        children = children_of_all()
        for unit in units:
            unit.end(children)
        for unit in units:
            unit.wait()
    return {
        "processor seconds of a unit per hour": sum(b - a for a, b in zip(before, after)) / count / elapsed * 3600,
        "memory of a unit": sum(memory) / count,
        "memory of its bus": sum(buses) / count,
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--replay", required=True)
    parser.add_argument("--seconds", type=float, required=True)
    parser.add_argument("--counts", type=lambda text: [int(word) for word in text.split(",")], required=True)
    parser.add_argument("--out", required=True)
    options = parser.parse_args()
    findings = []
    with tempfile.TemporaryDirectory() as folder:
        for count in options.counts:
            figures = measure(os.path.abspath(options.replay), count, options.seconds, folder)
            for figure, number in figures.items():
                findings.append(
                    {"shape": "", "work": "units", "contender": figure, "variant": str(count), "what": "numbers",
                     "numbers": [number]}
                )
    with open(options.out, "w", encoding="utf-8") as file:
        json.dump(findings, file, indent=1)


if __name__ == "__main__":
    try:
        main()
    except (Failure, OSError, subprocess.SubprocessError) as error:
        sys.exit(f"units.py: {error}")
