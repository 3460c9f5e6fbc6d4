# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""Draws tails and growth with gnuplot."""

import statistics
import subprocess

PANEL_WIDTH = 520
PANEL_HEIGHT = 340
COLUMNS = 2

STYLE = """
set terminal svg size {width},{height} font "sans-serif,12" background rgb "white"
set multiplot layout {lines},{columns}
set grid xtics ytics lc rgb "#dddddd" lt 1
set key top left Left reverse samplen 2
set logscale xy
"""

COLOURS = ["#c0392b", "#2e5f8a", "#1e8449", "#d68910", "#7d3c98", "#566573"]

TIME_TICS = 'set ytics ("1 ns" 1, "10 ns" 10, "100 ns" 100, "1 us" 1e3, "10 us" 1e4, "100 us" 1e5, "1 ms" 1e6, ' \
    '"10 ms" 1e7, "100 ms" 1e8, "1 s" 1e9)'
SHARE_TICS = 'set xtics ("0 %%" 1, "90 %%" 10, "99 %%" 100, "99.9 %%" 1e3, "99.99 %%" 1e4, "99.999 %%" 1e5, ' \
    '"99.9999 %%" 1e6, "" 1e7, "" 1e8)'


def _draw(panels):
    """The picture of panels, each a list of gnuplot's commands before its plot and its curves: title, points, linear?"""
    commands = [
        STYLE.format(
            width=COLUMNS * PANEL_WIDTH,
            height=-(-len(panels) // COLUMNS) * PANEL_HEIGHT,
            lines=-(-len(panels) // COLUMNS),
            columns=COLUMNS,
        )
    ]
    for settings, curves in panels:
        commands += settings
        plots = []
        for number, (title, points, is_linear) in enumerate(curves):
            commands += [f"$data{number} << EOD", *(f"{x} {y}" for x, y in points), "EOD"]
            colour = "#999999" if is_linear else COLOURS[number % len(COLOURS)]
            style = "lines dashtype 2" if is_linear else "linespoints pointtype 7 pointsize 0.4"
            plots.append(f'$data{number} using 1:2 with {style} linecolor rgb "{colour}" title "{title}"')
        commands.append("plot " + ", ".join(plots))
    commands.append("unset multiplot")
    drawn = subprocess.run(["gnuplot"], input="\n".join(commands), capture_output=True, text=True, check=False)
    if drawn.returncode != 0 or drawn.stderr.strip():
        raise RuntimeError("gnuplot: " + drawn.stderr.strip())
    return drawn.stdout


def draw_tails(findings):
    """Each operation's duration by the share of operations that do not exceed it, one panel per load."""
    panels = []
    for load in findings.tail_loads():
        curves = [
            (
                operation.replace("`", ""),
                [(1 / (1 - share), length) for share, length in tail.points() if length > 0],
                False,
            )
            for operation, tail in findings.tails_of(load).items()
        ]
        beside = "alone" if load == "0" else f"beside {load} readers that scan without pause"
        panels.append(([f'set title "{beside}"', 'set xlabel "share of all operations"', SHARE_TICS, TIME_TICS], curves))
    return _draw(panels)


def linear(points):
    """What the first point's cost would become if it grew as the number does."""
    (first, cost), (last, _) = points[0], points[-1]
    return [(first, cost), (last, cost * last / first)]


def _growth(title, label, tics, figures):
    """A panel of figures: title and points; the line of a linear cost begins where the first figure does."""
    figures = [(name, points) for name, points in figures if points]
    curves = [(name, points, False) for name, points in figures]
    curves += [("linear", linear(figures[0][1]), True)]
    return [f'set title "{title}"', f'set xlabel "{label}"', "set xtics autofreq", tics], curves


def draw_growth(findings):
    readers = "reading processes"

    def of(figure, factor=1):
        return [(count, statistics.median(numbers) * factor) for count, numbers in findings.growth("scale", figure) if count]

    def total(figure):
        return [(count, statistics.median(numbers) * count / 1e6) for count, numbers in findings.growth("scale", figure) if count]

    panels = [
        _growth(
            "an update", readers, TIME_TICS,
            [("elapsed", of("update, elapsed")), ("processor time", of("update, processor time"))],
        ),
        _growth(
            "a scan of everything", readers, TIME_TICS,
            [("elapsed", of("scan, elapsed")), ("processor time", of("scan, processor time"))],
        ),
        _growth("memory of all readers (MB)", readers, "set ytics autofreq", [("by their own pages", total("memory of a reader"))]),
    ]
    units = [
        (name, [(count, numbers[0] * count * factor) for count, numbers in findings.growth("units", figure)])
        for name, figure, factor in (
            ("memory (MB)", "memory of a unit", 1e-6),
            ("processor time (s per hour)", "processor seconds of a unit per hour", 1),
        )
    ]
    if units[0][1]:
        panels.append(_growth("all units together", "units on one machine", "set ytics autofreq", units))
    return _draw(panels)
