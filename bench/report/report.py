# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""Writes performance.md, performance-tables.md and their pictures from what the benchmark programs found, and
performance.json, with every single pass, beside the raw results.

usage: report.py RESULTS-DIRECTORY OUTPUT-DIRECTORY
       report.py --processors RESULTS-DIRECTORY     prints the instructions on both processors and writes nothing
"""

import json
import os
import platform
import re
import statistics
import subprocess
import sys

from chart import draw, duration
from curves import draw_growth, draw_tails
from findings import INSPECTOR, SHAPES, Findings
from targets import TARGETS

# Name of the work in the programs, its title, and what one operation is.
WORKS = [
    ("update", "Update one value by id and key", "`updateMV`, the heap value it takes included; ids in shuffled order"),
    ("find", "Look a point up", "`mpnt`; ids in shuffled order"),
    ("fetch", "Fetch one value by id and key", "`mpnt`, then `mvs` up to the key; ids in shuffled order"),
    ("point", "Look a point up and sum its values", "`mpnt`, then `values` with a visitor; ids in shuffled order"),
    ("visit", "Visit everything", "`visit` with a visitor that sums"),
    ("rebuild", "Rebuild the index", "`syncPositions`"),
    ("propagate", "Propagate states after a change", "`propagateStates`, one value in fifty warning, after one value has "
     "changed its state"),
    ("propagate unchanged", "Propagate states when nothing changed", "`propagateStates`, over and over"),
    ("create", "Build from empty, with a fresh store", "`openShm`, then `addStructure`, logging off"),
    ("add", "Build in a store that is ready", "`addStructure` alone, logging off"),
    ("format", "Format one value", "`ValueFormatter::str`"),
    ("update beside readers", "Update while readers scan without pause", "`updateMV`, by the number of reading processes"),
    ("scan beside a writer", "Scan while a writer updates without pause", "`visit`, without and with a writing process"),
    ("visible", "From an update to being seen", "`updateMV` until another process, which fetches the value without pause, "
     "has read it"),
]

CHART_SHAPE = "1x800"
COST_SHAPES = ("20x40", "1x800")

# Of a tail's table, with their titles.
SHARES = ((0.5, "p50"), (0.99, "p99"), (0.999, "p99.9"), (0.9999, "p99.99"))

# The call at the start of an operation's description.
CALL = re.compile("`[^`]*`")


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = re.search(r"^model name\s*:\s*(.*)$", file.read(), re.MULTILINE)
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    return {
        "cores": os.cpu_count(),
        "cpu": model.group(1) if model else platform.machine(),
        "kernel": platform.release(),
        "compiler": compiler,
    }


def count(number):
    if number is None:
        return "-"
    return f"{number:,.0f}" if number >= 100 or number == int(number) else f"{number:.3g}"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 1) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows]) + "\n"


def named(contender, variant):
    return f"{contender} ({variant} beside)" if variant else contender


def reference(findings, row):
    """What a row's ratio is to: the floor, or where others are beside it, the same contender without them."""
    return findings.row(row.shape, row.work, row.contender, "0") if row.variant else findings.row(
        row.shape, row.work, "floor"
    )


def work_table(findings, work):
    """Time, ratio and (where they were counted) instructions of each contender, for each shape that was timed."""
    shapes = findings.timed_shapes(work)
    known = findings.contenders(work)
    counted = any(row.instructions is not None for row in findings.rows() if row.work == work)
    ratio = "x idle" if any(variant for _, variant in known) else "x floor"
    columns = ["time", ratio] + (["instructions"] if counted else [])
    rows = []
    for contender, variant in known:
        cells = [named(contender, variant)]
        for shape in shapes:
            row = findings.row(shape, work, contender, variant)
            if row is None or not row.passes:
                cells += ["-"] * len(columns)
                continue
            cells += [f"{duration(row.median)} ± {100 * row.spread:.0f} %", f"{row.ratio(reference(findings, row)):.3g}"]
            cells += [count(row.instructions)] if counted else []
        rows.append(cells)
    return table(["contender"] + [f"{shape} {column}" for shape in shapes for column in columns], rows)


def inspector_table(findings):
    shapes = findings.timed_shapes(INSPECTOR)
    rows = []
    for call, _ in findings.contenders(INSPECTOR):
        found = [findings.row(shape, INSPECTOR, call) for shape in shapes]
        rows.append([f"`{call}`"] + [f"{duration(row.median)} ± {100 * row.spread:.0f} %" for row in found])
    return table(["call"] + shapes, rows)


def counts_table(findings, shape, what):
    works = [work for work, _, _ in WORKS if any(getattr(row, what) is not None for row in findings.rows() if row.work == work)]
    contenders = list(dict.fromkeys(row.contender for row in findings.rows() if row.work in works))
    rows = []
    for contender in contenders:
        found = [findings.row(shape, work, contender) for work in works]
        rows.append([contender] + [count(getattr(row, what)) if row else "-" for row in found])
    return table(["contender"] + works, rows)


def sizes_table(findings, shape):
    contenders = list(dict.fromkeys(contender for known, contender, _ in findings.sizes if known == shape))
    values = {"20x40": 8800, "1x800": 8800, "1x45": 495}[shape]
    rows = []
    for contender in contenders:
        store, writer, reader = (
            findings.sizes[(shape, contender, what)] for what in ("store bytes", "writer bytes", "reader bytes")
        )
        rows.append([contender, f"{store / values:.1f}", f"{writer / values:.1f}", f"{reader / values:.1f}"])
    return table(["contender", "store", "heap of the writer", "heap of a reader"], rows)


def targets_table(findings):
    """Targets that are not met first, then those that were not measured."""
    order = ["**not met**", "not measured", "met"]
    rows = []
    for target in TARGETS:
        if target.shape not in findings.shapes():
            continue
        reached = target.reached(findings)
        if reached is None:
            verdict, number = "not measured", "-"
        else:
            verdict = "met" if reached <= target.most else "**not met**"
            number = f"{reached:.3g} x" if target.measure == "time" else f"{count(reached)} {target.measure}"
        title = next(title for work, title, _ in WORKS if work == target.work)
        rows.append([title, target.shape, target.contender, f"at most {target.bound()}", number, verdict])
    rows.sort(key=lambda row: order.index(row[-1]))
    return table(["work", "shape", "by", "target", "reached", ""], rows)


def costs_table(findings):
    """What the library's operations cost: time and instructions on the largest shapes."""
    shapes = [shape for shape in findings.shapes() if shape in COST_SHAPES] or findings.shapes()[:1]
    rows = []
    for work, title, operation in WORKS:
        for contender, variant in findings.contenders(work):
            if variant or not contender.startswith("library"):
                continue
            cells = [title, CALL.match(operation)[0] if contender == "library" else contender.split(", ")[1]]
            for shape in shapes:
                row = findings.row(shape, work, contender)
                cells += (
                    [duration(row.median), count(row.instructions), count(row.arm_instructions)]
                    if row and row.passes
                    else ["-"] * 3
                )
            rows.append(cells)
    columns = ("time", "instructions", "on 32-bit ARM")
    head = ["what", "by"] + [f"{shape} {column}" for shape in shapes for column in columns]
    return table(head, rows)


def replaced_targets(findings):
    """Why targets against the floor were given up, a sentence each."""
    reasons = {}
    for target in TARGETS:
        if target.why and target.shape in findings.shapes():
            title = next(title for work, title, _ in WORKS if work == target.work)
            reasons.setdefault(target.why, f"- {title} ({target.contender}): {target.why}")
    return "Where the floor was the wrong measure, the target is another one:\n\n" + "\n".join(reasons.values()) + "\n"


def tail_table(findings, load):
    rows = []
    for operation, tail in findings.tails_of(load).items():
        lengths = [tail.at(share) for share, _ in SHARES] + [tail.longest]
        rows.append([operation, *("-" if length is None else duration(length) for length in lengths), count(tail.count)])
    return table(["operation"] + [title for _, title in SHARES] + ["longest", "operations timed"], rows)


def tails_section(findings):
    parts = ["## Tails\n\nEach operation timed by itself, on `" + CHART_SHAPE + "`, the two looks at the clock included. "
             "\"The clock alone\" is the machine's own jitter in the same run.\n"]
    for load in findings.tail_loads():
        beside = "Alone" if load == "0" else f"Beside {load} processes that scan without pause"
        parts.append(f"{beside}:\n\n{tail_table(findings, load)}")
    parts.append("![share of operations by their length](performance-tails.svg)\n")
    return "\n".join(parts)


def middle(numbers):
    return statistics.median(numbers)


def readers_table(findings):
    """A writer and its readers by the number of reading processes; slow-down is against the writer alone."""
    figures = {
        name: dict(findings.growth("scale", name))
        for name in ("update, processor time", "update, elapsed", "scan, processor time", "scan, elapsed",
                     "memory of the writer", "memory of a reader", "of it shared memory", "of it private")
    }
    rows = []
    for readers, update in figures["update, processor time"].items():
        def cell(name, form, readers=readers):
            numbers = figures[name].get(readers)
            return form(middle(numbers)) if numbers else "-"

        slower = middle(update) / middle(figures["update, processor time"][0])
        rows.append([
            str(readers), duration(middle(update)), f"{slower:.2f}", cell("update, elapsed", duration),
            cell("scan, processor time", duration), cell("scan, elapsed", duration),
            *(cell(name, lambda size: f"{size / 1024:,.0f}") for name in
              ("memory of the writer", "memory of a reader", "of it shared memory", "of it private")),
        ])
    return table(["readers", "update, processor time", "x alone", "update, elapsed", "scan, processor time",
                  "scan, elapsed", "writer KB", "reader KB", "of it shared object KB", "of it private KB"], rows)


def openings_table(findings):
    rows = [[figure, duration(middle(numbers)), duration(max(numbers))] for figure, numbers in findings.openings().items()]
    return table(["opening a reader", "median", "longest"], rows)


def units_table(findings):
    names = ("processor seconds of a unit per hour", "memory of a unit", "memory of its bus")
    figures = [dict(findings.growth("units", name)) for name in names]
    rows = []
    for units in figures[0]:
        seconds, memory, bus = (figure[units][0] for figure in figures)
        rows.append([str(units), f"{seconds:.3g}", f"{memory / 1024:,.0f}", f"{bus / 1024:,.0f}"])
    return table(["units", "processor seconds per hour", "qel-replay KB", "its bus KB"], rows)


def growth_section(findings):
    parts = [
        "## Growth\n\nReading processes that scan `" + CHART_SHAPE + "` without pause, beside one writer that updates without "
        "pause. Memory is each process's share of its pages (PSS).\n",
        readers_table(findings),
        openings_table(findings),
    ]
    if findings.growth("units", "memory of a unit"):
        parts.append("Units replayed side by side at recorded speed, each in surroundings of its own; a row is due every "
                     "second, and numbers are of each unit:\n\n" + units_table(findings))
    parts.append("![cost by the number of processes and units, beside a linear one](performance-growth.svg)\n")
    return "\n".join(parts)


def processors_table(findings):
    """Instructions per operation on both processors, and how many times more 32-bit ARM takes."""
    shapes = [shape for shape in COST_SHAPES if any(row.shape == shape and row.arm_instructions for row in findings.rows())]
    rows = []
    for work, title, _ in WORKS:
        for contender, variant in findings.contenders(work):
            found = [findings.row(shape, work, contender, variant) for shape in shapes]
            if not any(row and row.arm_instructions for row in found):
                continue
            cells = [title, contender]
            for row in found:
                both = row and row.arm_instructions and row.instructions
                cells += [count(row.instructions), count(row.arm_instructions),
                          f"{row.arm_instructions / row.instructions:.2f}"] if both else ["-"] * 3
            rows.append(cells)
    return table(["work", "contender"] + [f"{shape} {column}" for shape in shapes for column in ("x86-64", "ARM", "ratio")], rows)


def prose(name):
    """What people found out about the numbers."""
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), name)
    with open(path, encoding="utf-8") as file:
        return file.read()


def stripped_sizes(findings):
    return ", ".join(f"{size:,} ({machine})" for machine, size in findings.stripped_sizes.items())


def page(findings, facts):
    shape_lines = "\n".join(f"- `{name}`: {SHAPES[name]}, 11 values each" for name in findings.shapes())
    return f"""# Performance

Written by `bench/run`. Measured on {facts['cores']} cores of {facts['cpu']}, Linux {facts['kernel']},
{facts['compiler']}, optimised (`-O3`). [performance-tables.md](performance-tables.md) compares the
library with other stores, work by work, and says how everything is measured.

## What it costs

{shape_lines}

{costs_table(findings)}
The stripped library takes {stripped_sizes(findings)} bytes.

![medians and quartiles of all contenders](performance.svg)

## Targets

{targets_table(findings)}
{replaced_targets(findings)}
{prose("bounds.md")}
{tails_section(findings)}
{growth_section(findings)}"""


def tables(findings):
    shape = CHART_SHAPE if CHART_SHAPE in findings.shapes() else findings.shapes()[0]
    parts = [
        """# Performance, in tables

Written by `bench/run`, on the machine that [performance.md](performance.md) names.

"""
        + prose("method.md"),
        "## Works\n",
    ]
    for work, title, operation in WORKS:
        if findings.contenders(work):
            parts.append(f"### {title}\n\n{operation}.\n\n{work_table(findings, work)}")
    parts.append(
        "## Looking into a unit\n\nWhole runs of `qelshm` on a live region, from the program's start to its end; "
        "`--version` is the start alone.\n\n" + inspector_table(findings)
    )
    if any(row.arm_instructions is not None for row in findings.rows()):
        parts.append("## Instructions on x86-64 and on 32-bit ARM\n\nPer operation.\n\n" + processors_table(findings))
    parts.append(
        f"## Allocations per operation\n\nShape `{shape}`; all threads of the process that measures.\n\n"
        + counts_table(findings, shape, "allocations")
    )
    if any(row.system_calls is not None for row in findings.rows()):
        parts.append(
            f"## System calls per operation\n\nShape `{shape}`; the thread that measures.\n\n"
            + counts_table(findings, shape, "system_calls")
        )
    parts.append(
        f"""## Bytes per value

Shape `{shape}`. The processes share the store; a writer and a reader need the heap beside it.

{sizes_table(findings, shape)}"""
    )
    parts.append(prose("changes.md"))
    return "\n".join(parts)


def as_json(findings, facts):
    return {
        "machine": facts,
        "library_bytes": findings.stripped_sizes,
        "rows": [
            {
                "shape": row.shape,
                "work": row.work,
                "contender": row.contender,
                "variant": row.variant,
                "median_ns": row.median if row.passes else None,
                "spread": row.spread if row.passes else None,
                "instructions": row.instructions,
                "arm_instructions": row.arm_instructions,
                "allocations": row.allocations,
                "system_calls": row.system_calls,
                "passes_ns": row.passes,
            }
            for row in findings.rows()
        ],
        "bytes": [
            {"shape": shape, "contender": contender, "what": what, "bytes": size}
            for (shape, contender, what), size in findings.sizes.items()
        ],
        "targets": [
            {
                "shape": target.shape,
                "work": target.work,
                "contender": target.contender,
                "bound": target.bound(),
                "most": target.most,
                "reached": target.reached(findings),
            }
            for target in TARGETS
        ],
        "tails": [
            {"readers": int(load), "operation": operation, **vars(tail)}
            for load in findings.tail_loads()
            for operation, tail in findings.tails_of(load).items()
        ],
        "growth": findings.growth_as_json(),
    }


def write(directory, name, text):
    with open(os.path.join(directory, name), "w", encoding="utf-8") as file:
        file.write(text)


def main():
    if sys.argv[1] == "--processors":
        print(processors_table(Findings(sys.argv[2])), end="")
        return
    results, output = sys.argv[1:]
    findings = Findings(results)
    facts = machine()
    shape = CHART_SHAPE if CHART_SHAPE in findings.shapes() else findings.shapes()[0]
    panels = []
    for work, title, _ in WORKS:
        rows = [findings.row(shape, work, *known) for known in findings.contenders(work)]
        rows = [row for row in rows if row is not None and row.passes]
        if rows:
            panels.append((title, rows))
    write(output, "performance.svg", draw(panels))
    write(output, "performance-tails.svg", draw_tails(findings))
    write(output, "performance-growth.svg", draw_growth(findings))
    write(output, "performance.md", page(findings, facts))
    write(output, "performance-tables.md", tables(findings))
    write(results, "performance.json", json.dumps(as_json(findings, facts), indent=1) + "\n")


if __name__ == "__main__":
    main()
