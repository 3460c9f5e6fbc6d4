# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

"""Draws medians and quartiles as dots on logarithmic axes, one panel per work."""

import math
import statistics
from xml.sax.saxutils import escape

PANEL_WIDTH = 500
LABEL_WIDTH = 200
ROW_HEIGHT = 16
HEAD_HEIGHT = 34
GAP = 22
COLUMNS = 2

COLOURS = {"library": "#c0392b", "literal": "#d68910", "floor": "#1e8449"}
OTHER_COLOUR = "#2e5f8a"

UNITS = [(1e9, "s"), (1e6, "ms"), (1e3, "us"), (1, "ns")]


def duration(nanoseconds):
    factor, unit = next((u for u in UNITS if nanoseconds >= u[0]), UNITS[-1])
    return f"{nanoseconds / factor:.3g} {unit}"


def _colour(contender):
    return next((colour for name, colour in COLOURS.items() if contender.startswith(name)), OTHER_COLOUR)


def _text(x, y, words, anchor="start", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" {extra}>{escape(words)}</text>'


def _quartiles(passes):
    if len(passes) < 2:
        return passes[0], passes[0]
    low, _, high = statistics.quantiles(passes, n=4, method="inclusive")
    return low, high


def _panel(left, top, title, rows):
    low = math.floor(math.log10(min(min(row.passes) for row in rows)))
    high = math.ceil(math.log10(max(max(row.passes) for row in rows)))
    high = max(high, low + 1)
    axis_left = left + LABEL_WIDTH
    axis_width = PANEL_WIDTH - LABEL_WIDTH - 62
    bottom = top + HEAD_HEIGHT + ROW_HEIGHT * len(rows)

    def place(nanoseconds):
        return axis_left + (math.log10(nanoseconds) - low) / (high - low) * axis_width

    parts = [_text(left, top + 12, title, extra='font-weight="bold"')]
    for power in range(low, high + 1):
        x = place(10**power)
        parts.append(f'<line x1="{x:.1f}" y1="{top + 28}" x2="{x:.1f}" y2="{bottom}" stroke="#ddd"/>')
        if (high - low) <= 5 or (power - low) % 2 == 0:
            parts.append(_text(x, top + 25, duration(10**power), "middle", 'fill="#777" font-size="9"'))
    for index, row in enumerate(rows):
        y = top + HEAD_HEIGHT + ROW_HEIGHT * index + 8
        colour = _colour(row.contender)
        name = row.contender + (f" ({row.variant} beside)" if row.variant else "")
        first, last = _quartiles(row.passes)
        parts.append(_text(axis_left - 8, y + 4, name, "end", f'fill="{colour}"'))
        parts.append(
            f'<line x1="{place(first):.1f}" y1="{y}" x2="{place(last):.1f}" y2="{y}" stroke="{colour}" '
            f'stroke-width="3" stroke-opacity="0.4"/>'
        )
        parts.append(f'<circle cx="{place(row.median):.1f}" cy="{y}" r="3.5" fill="{colour}"/>')
        parts.append(_text(axis_left + axis_width + 8, y + 4, duration(row.median), extra='fill="#444"'))
    return parts, bottom + GAP


def draw(panels):
    """The picture of panels, each a title and its rows, as SVG text."""
    bottoms = [GAP] * COLUMNS
    parts = []
    for title, rows in panels:
        column = bottoms.index(min(bottoms))
        drawn, bottoms[column] = _panel(GAP + column * (PANEL_WIDTH + GAP), bottoms[column], title, rows)
        parts += drawn
    width = COLUMNS * (PANEL_WIDTH + GAP) + GAP
    height = max(bottoms)
    return "\n".join(
        [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
            f'height="{height}" font-family="sans-serif" font-size="11">',
            f'<rect width="{width}" height="{height}" fill="white"/>',
            *parts,
            "</svg>\n",
        ]
    )
