# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""Reads what the benchmark programs, callgrind and strace left behind."""

import dataclasses
import glob
import json
import os
import re
import statistics

# Whole runs of qelshm; they contend with nobody.
INSPECTOR = "inspect"

SHAPES = {
    "20x40": "20 units of 40 points",
    "1x800": "one unit of 800 points",
    "1x45": "one unit of 45 points",
}


@dataclasses.dataclass
class Row:
    """One contender at one work on one shape; all numbers are per operation."""

    shape: str
    work: str
    contender: str
    variant: str
    passes: list  # ns, in the order of the passes
    instructions: float = None
    arm_instructions: float = None
    allocations: float = None
    system_calls: float = None

    @property
    def median(self):
        return statistics.median(self.passes)

    @property
    def spread(self):
        """Half the distance between the quartiles, as a share of the median."""
        if len(self.passes) < 2:
            return 0.0
        low, _, high = statistics.quantiles(self.passes, n=4, method="inclusive")
        return (high - low) / 2 / self.median

    def ratio(self, other):
        """Median over the passes of this row's time by the other's in the same pass."""
        return statistics.median(a / b for a, b in zip(self.passes, other.passes))


@dataclasses.dataclass
class Tail:
    """How long an operation took each time, in ns."""

    shares: list = None  # of all operations
    quantiles: list = None  # that these shares did not exceed
    longest: float = None
    count: int = None

    def points(self):
        return list(zip(self.shares, self.quantiles))

    def at(self, share):
        """None where too few operations were timed to tell."""
        return next((length for known, length in self.points() if abs(known - share) < 1e-9), None)


class Findings:
    def __init__(self, directory):
        self._rows = {}
        self._tails = {}  # (load, operation) -> Tail
        self._growth = {}  # (what grew, figure) -> [(variant, numbers)]
        self._marked = {}  # shape -> [(row, operations)], in the order of the marks
        self.sizes = {}  # (shape, contender, what) -> bytes
        for path in sorted(glob.glob(os.path.join(directory, "*-*.json"))):
            with open(path, encoding="utf-8") as file:
                for finding in json.load(file):
                    self._add(finding)
        for shape in SHAPES:
            self._read_callgrind(directory, shape)
            self._read_strace(directory, shape)
            self._read_emulated(directory, shape)
        self.stripped_sizes = {
            os.path.basename(library)[len("stripped-") : -len(".so")]: os.path.getsize(library)
            for library in sorted(glob.glob(os.path.join(directory, "stripped-*.so")))
        }

    def shapes(self):
        return [shape for shape in SHAPES if any(row.shape == shape for row in self.rows())]

    def timed_shapes(self, work):
        timed = {row.shape for row in self.rows() if row.work == work and row.passes}
        return [shape for shape in SHAPES if shape in timed]

    def rows(self):
        return self._rows.values()

    def row(self, shape, work, contender, variant=""):
        return self._rows.get((shape, work, contender, variant))

    def contenders(self, work):
        """Name and variant of a work's rows, in the order in which the programs list them."""
        return list(dict.fromkeys((row.contender, row.variant) for row in self.rows() if row.work == work))

    def all_contenders(self):
        return list(dict.fromkeys(row.contender for row in self.rows() if row.work != INSPECTOR))

    def tail_loads(self):
        """Numbers of readers beside the operations."""
        return list(dict.fromkeys(load for load, _ in self._tails))

    def tails_of(self, load):
        return {operation: tail for (known, operation), tail in self._tails.items() if known == load}

    def growth(self, work, figure):
        """A figure's numbers by the count of processes or units."""
        return [(int(variant), numbers) for variant, numbers in self._growth.get((work, figure), []) if variant.isdigit()]

    def openings(self):
        """Figures of opening a reader, in ns."""
        return {
            figure: numbers
            for (work, figure), variants in self._growth.items()
            for variant, numbers in variants
            if work == "scale" and variant == "open"
        }

    def growth_as_json(self):
        return [
            {"of": work, "figure": figure, "count": variant, "numbers": numbers}
            for (work, figure), variants in self._growth.items()
            for variant, numbers in variants
        ]

    def _add(self, finding):
        if finding["work"] == "tails":
            tail = self._tails.setdefault((finding["variant"], finding["contender"]), Tail())
            whole = finding["what"] in ("shares", "quantiles")
            setattr(tail, finding["what"], finding["numbers"] if whole else finding["numbers"][0])
            return
        if finding["work"] in ("scale", "units"):
            known = self._growth.setdefault((finding["work"], finding["contender"]), [])
            known.append((finding["variant"], finding["numbers"]))
            return
        key = (finding["shape"], finding["work"], finding["contender"], finding["variant"])
        what = finding["what"]
        if finding["work"] == "size":
            self.sizes[(finding["shape"], finding["contender"], what)] = finding["numbers"][0]
        elif what == "ns":
            self._row(key).passes = finding["numbers"]
        elif what == "allocations":
            self._row(key).allocations = finding["numbers"][0]
        elif what == "marked operations":
            self._marked.setdefault(finding["shape"], []).append((self._row(key), finding["numbers"][0]))

    def _row(self, key):
        return self._rows.setdefault(key, Row(*key, passes=[]))

    def _labelled(self, shape, label):
        """The row that a program's label "work|contender[|variant]#operations" names, and its operations."""
        name, operations = label.rsplit("#", 1)
        work, contender, variant = (name.split("|") + [""])[:3]
        return self._row((shape, work, contender, variant)), int(operations)

    def _read_callgrind(self, directory, shape):
        for path in glob.glob(os.path.join(directory, f"{shape}.callgrind*")):
            with open(path, encoding="utf-8") as file:
                text = file.read()
            label = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.MULTILINE)
            if label:
                row, operations = self._labelled(shape, label.group(1))
                row.instructions = int(re.search(r"^totals: (\d+)", text, re.MULTILINE).group(1)) / operations

    def _read_strace(self, directory, shape):
        path = os.path.join(directory, f"{shape}.strace")
        if not os.path.exists(path):
            return
        calls = None
        with open(path, encoding="utf-8", errors="replace") as file:
            for line in file:
                mark = re.match(r'write\(-1, "(begin|end) ([^"]*)"', line)
                if not mark:
                    if calls is not None and re.match(r"\w+\(", line):
                        calls += 1
                elif mark.group(1) == "begin":
                    calls = 0
                else:
                    row, operations = self._labelled(shape, mark.group(2))
                    row.system_calls = calls / operations
                    calls = None

    def _read_emulated(self, directory, shape):
        """Counts of instructions at a begin and an end for each row; the first pair has nothing in between."""
        path = os.path.join(directory, f"{shape}.arm-counts")
        if not os.path.exists(path):
            return
        with open(path, encoding="utf-8") as file:
            counts = [int(line) for line in file]
        rounds = [end - begin for begin, end in zip(counts[::2], counts[1::2])]
        marked = self._marked[shape]
        if len(counts) != 2 * (len(marked) + 1):
            raise ValueError(f"{path} has {len(counts)} marks for {len(marked)} rows")
        for (row, operations), instructions in zip(marked, rounds[1:]):
            row.arm_instructions = (instructions - rounds[0]) / operations
