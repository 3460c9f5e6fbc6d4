// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/DetailPane.h"

#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/watch/CurvePlot.h"
#include "tools/qelshm/watch/Graph.h"

#include "format/ValueFormatter.h"

#include <algorithm>

namespace qel::watch {

namespace {

constexpr int leastColumnsWithList = 80; // of the values, beside the graph
constexpr int listColumns = 46;
constexpr int listValueColumns = 12;
constexpr int listStateColumns = 15;
constexpr int pointStateColumns = 18;
constexpr int axisColumns = 12; // at most

std::string numberText(unsigned short key, double number) {
    return tav::ValueFormatter::str(key, number, " ");
}

std::string spanText(std::uint64_t ms) {
    constexpr std::uint64_t msPerSecond = 1000;
    constexpr std::uint64_t secondsPerMinute = 60;
    constexpr std::uint64_t mostMinutes = 10;
    auto const seconds = ms / msPerSecond;
    return seconds < mostMinutes * secondsPerMinute ? std::to_string(seconds) + " s"
                                                    : std::to_string(seconds / secondsPerMinute) + " min";
}

std::string shortenedTo(std::string const& text, int width) {
    return tools::shortened(text, static_cast<std::size_t>(std::max(width, 0)));
}

} // namespace

int DetailPane::graphHeight(int screenLines) {
    constexpr int least = 4;
    constexpr int most = 8;
    constexpr int smallScreen = 24;
    constexpr int linesPerLine = 6;
    return std::clamp(least + (screenLines - smallScreen) / linesPerLine, least, most);
}

void DetailPane::drawValues(DetailView const& detail, Area const& first, int height) {
    auto const shown = std::find_if(detail.values.begin(), detail.values.end(),
                                    [](RowView const& value) { return value.isSelected; });
    auto const lines = static_cast<std::size_t>(std::max(height, 1));
    auto const index = static_cast<std::size_t>(shown - detail.values.begin());
    auto const begin = index < lines ? 0 : index + 1 - lines;
    int const nameColumns = first.width - listValueColumns - listStateColumns;
    int line = first.line;
    for (auto value = begin; value < std::min(begin + lines, detail.values.size()); ++value) {
        auto const& row = detail.values[value];
        auto const emphasis = row.isSelected ? bold : plain;
        auto const name = (row.isSelected ? " >" : "  ") + row.name;
        canvas_.put({line, first.column, nameColumns}, shortenedTo(name, nameColumns - 1), emphasis);
        canvas_.put({line, first.column + nameColumns, listValueColumns}, row.value,
                    Ink(emphasis, row.isStale ? tools::Style::Warning : tools::Style::Plain));
        canvas_.put({line, first.column + nameColumns + listValueColumns, listStateColumns},
                    shortenedTo(row.state, listStateColumns - 1), Ink(emphasis, row.style));
        ++line;
    }
}

/// @return the columns that the axis takes
int DetailPane::drawAxis(unsigned short key, GraphScale const& scale, Area const& first, int height) {
    auto const high = numberText(key, scale.high);
    auto const low = numberText(key, scale.low);
    int const widest = static_cast<int>(std::max(tools::widthOf(high), tools::widthOf(low)));
    int const columns = std::min(widest, axisColumns);
    if (columns + 1 >= first.width) {
        return 0; // the graph is worth more
    }
    auto const atRight = [&](std::string const& text) {
        auto const own = static_cast<int>(tools::widthOf(text));
        return std::string(static_cast<std::size_t>(std::max(columns - own, 0)), ' ') + text;
    };
    canvas_.put({first.line, first.column, columns}, atRight(high), dim);
    canvas_.put({first.line + height - 1, first.column, columns}, atRight(low), dim);
    return columns + 1;
}

void DetailPane::drawBars(DetailView const& detail, Area const& first, int height) {
    auto const& curve = detail.curves.front();
    auto const lines = static_cast<std::size_t>(height);
    auto const widest = std::min(first.width, static_cast<int>(History::length));
    auto const& glyphs = canvas_.isUtf8() ? blockBars : asciiBars;
    auto graph =
        graphOf(*curve.history, detail.newestBucket, static_cast<std::size_t>(widest), lines, glyphs);
    if (graph.range.isEmpty()) {
        canvas_.put({first.line + height, first.column, first.width}, "no data yet", dim);
        return;
    }
    int const axis = drawAxis(curve.key, graph.scale, first, height);
    int const width = std::min(first.width - axis, widest);
    if (width != widest) {
        graph = graphOf(*curve.history, detail.newestBucket, static_cast<std::size_t>(width), lines, glyphs);
    }
    int line = first.line;
    for (auto const& text : graph.lines) {
        canvas_.put({line++, first.column + axis, width}, text, Ink::ofCurve(0));
    }
    canvas_.put({line, first.column, first.width},
                "min " + numberText(curve.key, static_cast<double>(graph.range.min)) + "  max " +
                    numberText(curve.key, static_cast<double>(graph.range.max)) + "  of " +
                    spanText(detail.spanOf(static_cast<std::size_t>(width))),
                dim);
}

void DetailPane::drawCurves(DetailView const& detail, Area const& first, int height) {
    std::vector<Curve> curves;
    curves.reserve(detail.curves.size());
    for (auto const& curve : detail.curves) {
        curves.push_back({curve.history, curve.key});
    }
    auto const glyphs = canvas_.isUtf8() && canvas_.isColoured() ? PlotGlyphs::Dots : PlotGlyphs::Letters;
    auto const lines = static_cast<std::size_t>(height);
    int const widest = std::min(first.width, static_cast<int>(History::length));
    auto plot = plotOf(curves, detail.newestBucket, static_cast<std::size_t>(widest), lines, glyphs);
    int const axis = drawAxis(curves.front().key, plot.scales.front(), first, height);
    int const width = std::min(first.width - axis, widest);
    plot = plotOf(curves, detail.newestBucket, static_cast<std::size_t>(width), lines, glyphs);
    for (int line = 0; line < height; ++line) {
        for (int column = 0; column < width; ++column) {
            auto const& cell = plot.lines[static_cast<std::size_t>(line)][static_cast<std::size_t>(column)];
            canvas_.put({first.line + line, first.column + axis + column, 1}, cell.glyph,
                        Ink::ofCurve(cell.curve));
        }
    }
    auto const columns = first.width / static_cast<int>(curves.size());
    for (std::size_t index = 0; index < curves.size(); ++index) {
        auto const& scale = plot.scales[index];
        auto text = std::string(1, static_cast<char>('a' + index)) + ' ' + detail.curves[index].name;
        if (curves[index].key != curves.front().key) {
            text += ' ' + numberText(curves[index].key, scale.low) + ".." +
                    numberText(curves[index].key, scale.high);
        }
        canvas_.put({first.line + height, first.column + static_cast<int>(index) * columns, columns},
                    shortenedTo(text, columns - 1), Ink::ofCurve(index));
    }
}

void DetailPane::drawGraph(DetailView const& detail, Area const& first, int height) {
    if (first.width <= 0 || height <= 0 || detail.curves.empty() ||
        detail.curves.front().history == nullptr) {
        canvas_.put(first, detail.values.empty() ? "no values" : "", dim);
        return;
    }
    auto const whole = detail.graphName + ", delivered " + detail.delivered;
    bool const fits = static_cast<int>(tools::widthOf(whole)) <= first.width;
    canvas_.put(first, fits ? whole : shortenedTo(detail.graphName, first.width), bold);
    Area const below{first.line + 1, first.column, first.width};
    if (detail.curves.size() == 1) {
        drawBars(detail, below, height);
    } else {
        drawCurves(detail, below, height);
    }
}

void DetailPane::draw(WatchModel const& model, int line, int height) {
    auto const detail = model.detail();
    int const columns = canvas_.width();
    auto const title =
        detail.path.empty() ? std::string() : ' ' + detail.path + "  " + detail.svid + "  " + detail.type;
    int const state = columns >= leastColumnsWithList / 2 ? pointStateColumns : 0;
    canvas_.put({line, 0, columns}, shortenedTo(title, columns - state - 1), reverse);
    canvas_.put({line, columns - state, state}, detail.state, Ink(reverse, detail.style));
    if (model.pane() != Pane::Graph) {
        auto const lines = model.paneLines();
        for (auto const& text : lines) {
            canvas_.put({++line, 1, columns - 1}, shortenedTo(text.text, columns - 2),
                        Ink(plain, text.style));
        }
        if (lines.empty()) {
            canvas_.put({++line, 1, columns - 1},
                        model.pane() == Pane::Events ? "Nothing has happened yet." : "", dim);
        }
        return;
    }
    if (detail.path.empty()) {
        return;
    }
    bool const hasList = columns >= leastColumnsWithList;
    if (hasList) {
        drawValues(detail, {line + 1, 0, listColumns - 1}, height - 1);
    }
    int const column = hasList ? listColumns : 1;
    drawGraph(detail, {line + 1, column, columns - column - 1}, height - otherLines);
}

} // namespace qel::watch
