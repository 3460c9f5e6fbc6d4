// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/TerminalPlot.h"

#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/plot/Axis.h"
#include "tools/qelshm/plot/BrailleCanvas.h"
#include "tools/qelshm/terminal/ExactText.h"
#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/terminal/Utf8Text.h"

#include "format/ValueFormatter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace qel::plot {

namespace {

/// Letters of the curves, and what "select graphic rendition" takes for their colours: neither red nor yellow.
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz";
constexpr std::array<char const*, 8> curveColours{"36", "35", "34", "32", "96", "95", "94", "92"};

constexpr std::size_t leastCanvas = 4;  // lines
constexpr std::size_t linesPerTick = 4; // at least
constexpr std::size_t columnsPerTick = 16;
constexpr std::size_t columnsPerLetter = 24;

char letterOf(std::size_t curve) {
    return letters[curve % letters.size()];
}

std::string curveColoured(std::string const& text, std::size_t curve, bool isColoured) {
    return isColoured
               ? std::string("\x1b[") + curveColours.at(curve % curveColours.size()) + 'm' + text + "\x1b[0m"
               : text;
}

std::string rightAligned(std::string const& text, std::size_t width) {
    auto const used = tools::widthOf(text);
    return std::string(used < width ? width - used : 0, ' ') + text;
}

/// One panel: the curves of a unit.
class PanelDrawing {
public:
    PanelDrawing(PlotData const& data, Panel panel, TerminalSize const& size, std::size_t labelWidth,
                 std::size_t height)
        : data_(data),
          panel_(std::move(panel)),
          size_(size),
          labelWidth_(labelWidth),
          axis_(axisOf(data, panel_, height)),
          canvas_(size.width - labelWidth - 2, height) {
        for (auto const index : panel_.curves) {
            drawLines(index);
        }
        for (std::size_t place = 0; data.curves.size() > 1 && place < panel_.curves.size(); ++place) {
            drawLetters(panel_.curves[place], place);
        }
    }

    static NumberAxis axisOf(PlotData const& data, Panel const& panel, std::size_t height) {
        auto const [least, greatest] = rangeOf(data, panel);
        return numberAxis(least, greatest, std::max<std::size_t>(height / linesPerTick, 2));
    }

    static std::size_t labelWidthOf(PlotData const& data, Panel const& panel, std::size_t height) {
        auto const axis = axisOf(data, panel, height);
        auto width = tools::widthOf(panel.unit);
        for (auto const tick : axis.ticks()) {
            width = std::max(width, tools::widthOf(axis.text(tick)));
        }
        return width;
    }

    std::string text() const {
        std::string text;
        if (!panel_.unit.empty()) {
            text += rightAligned(unitText(), labelWidth_) + '\n';
        }
        for (std::size_t row = 0; row < canvas_.height(); ++row) {
            text += rowText(row);
        }
        for (auto const index : panel_.curves) {
            text += spansText(index);
        }
        return text + axisText();
    }

private:
    using Point = std::pair<std::size_t, std::size_t>;

    std::size_t columnOf(std::uint64_t time) const {
        auto const last = canvas_.width() * BrailleCanvas::dotsAcross - 1;
        if (data_.until == data_.from) {
            return 0;
        }
        auto const part =
            static_cast<double>(time - data_.from) / static_cast<double>(data_.until - data_.from);
        return std::min(last, static_cast<std::size_t>(std::lround(part * static_cast<double>(last))));
    }

    std::size_t lineOf(double number) const {
        auto const last = static_cast<double>(canvas_.height() * BrailleCanvas::dotsDown - 1);
        auto const part = (axis_.high - number) / (axis_.high - axis_.low);
        return static_cast<std::size_t>(std::lround(std::clamp(part, 0.0, 1.0) * last));
    }

    std::size_t rowOf(double number) const { return lineOf(number) / BrailleCanvas::dotsDown; }

    Point dotOf(PlotPoint const& point) const { return {columnOf(point.time), lineOf(point.number)}; }

    void drawLines(std::size_t index) {
        for (auto const& piece : data_.curves[index].series.pieces()) {
            auto from = dotOf(piece.front());
            for (auto const& point : piece) {
                auto const to = dotOf(point);
                canvas_.line(index, from.first, from.second, to.first, to.second);
                from = to;
            }
        }
    }

    /// The curve's letter here and there on its line, where the other curves have not theirs.
    void drawLetters(std::size_t index, std::size_t place) {
        auto const distance = columnsPerLetter * BrailleCanvas::dotsAcross;
        auto next = distance * (2 * place + 1) / (2 * panel_.curves.size());
        for (auto const& piece : data_.curves[index].series.pieces()) {
            for (auto const& point : piece) {
                auto const [x, y] = dotOf(point);
                if (x >= next) {
                    canvas_.mark(index, x, y, letterOf(index));
                    next += ((x - next) / distance + 1) * distance;
                }
            }
        }
    }

    std::string unitText() const { return size_.isAscii ? tools::asciiOnly(panel_.unit) : panel_.unit; }

    std::string rowText(std::size_t row) const {
        std::string label;
        for (auto const tick : axis_.ticks()) {
            label = rowOf(tick) == row ? axis_.text(tick) : label;
        }
        bool const isTick = !label.empty();
        auto text = rightAligned(label, labelWidth_) + ' ' +
                    (size_.isAscii ? (isTick ? "+" : "|") : (isTick ? "┤" : "│"));
        bool const isLimit = std::any_of(data_.limits.begin(), data_.limits.end(),
                                         [&](Limit const& limit) { return rowOf(limit.number) == row; });
        for (std::size_t column = 0; column < canvas_.width(); ++column) {
            auto const glyph = size_.isAscii ? canvas_.asciiGlyph(column, row, std::string(letters))
                                             : canvas_.glyph(column, row);
            if (glyph.curve != BrailleCanvas::noCurve) {
                text += curveColoured(glyph.text, glyph.curve, size_.isColoured);
            } else if (isLimit && column % 2 == 0) {
                text += size_.isColoured ? tools::styled("-", tools::Style::Alarm) : "-";
            } else {
                text += ' ';
            }
        }
        return text.erase(text.find_last_not_of(' ') + 1) + '\n';
    }

    /// "" for a curve without warnings and alarms.
    std::string spansText(std::size_t index) const {
        auto const spans = data_.curves[index].series.spans();
        if (spans.empty()) {
            return {};
        }
        std::string marks(canvas_.width(), ' ');
        for (auto const& span : spans) {
            auto const last = columnOf(span.until) / BrailleCanvas::dotsAcross;
            for (auto column = columnOf(span.from) / BrailleCanvas::dotsAcross; column <= last; ++column) {
                auto& mark = marks[column];
                mark = span.isAlarm ? '!' : mark == '!' ? '!' : '~';
            }
        }
        marks.erase(marks.find_last_not_of(' ') + 1);
        std::string text;
        for (char const mark : marks) {
            auto const style = mark == '!'   ? tools::Style::Alarm
                               : mark == '~' ? tools::Style::Warning
                                             : tools::Style::Plain;
            text += size_.isColoured ? tools::styled(std::string(1, mark), style) : std::string(1, mark);
        }
        auto const label = data_.curves.size() > 1 ? std::string(1, letterOf(index)) : std::string();
        return rightAligned(label, labelWidth_) + "  " + text + '\n';
    }

    std::string axisText() const {
        std::string line;
        std::string labels(labelWidth_ + 2 + canvas_.width(), ' ');
        std::vector<bool> isTick(canvas_.width());
        std::size_t free = 0;
        for (auto const& tick : timeTicks(data_.from, data_.until, canvas_.width() / columnsPerTick)) {
            auto const column = columnOf(tick.time) / BrailleCanvas::dotsAcross;
            auto const middle = labelWidth_ + 2 + column;
            auto const start = std::min(middle - std::min(middle, tick.text.size() / 2),
                                        labels.size() - std::min(labels.size(), tick.text.size()));
            if (start >= free) {
                isTick[column] = true;
                labels.replace(start, tick.text.size(), tick.text);
                free = start + tick.text.size() + 1;
            }
        }
        for (bool const is : isTick) {
            line += size_.isAscii ? (is ? "+" : "-") : (is ? "┬" : "─");
        }
        labels.erase(labels.find_last_not_of(' ') + 1);
        return std::string(labelWidth_ + 1, ' ') + (size_.isAscii ? "+" : "└") + line + '\n' + labels + '\n';
    }

    PlotData const& data_;
    Panel panel_;
    TerminalSize size_;
    std::size_t labelWidth_;
    NumberAxis axis_;
    BrailleCanvas canvas_;
};

std::string numberText(Curve const& curve, double number) {
    return tav::ValueFormatter::str(curve.key, number, " ");
}

std::string legend(PlotData const& data, TerminalSize const& size) {
    std::string text;
    std::size_t width = 0;
    for (auto const& curve : data.curves) {
        width = std::max(width, curve.name.size());
    }
    for (std::size_t index = 0; index < data.curves.size(); ++index) {
        auto const& curve = data.curves[index];
        auto const& series = curve.series;
        auto const name = curve.name + std::string(width - curve.name.size(), ' ');
        auto const mark = data.curves.size() > 1 ? std::string(1, letterOf(index)) + "  " : std::string();
        auto const numbers = series.isEmpty() ? std::string("nothing was delivered")
                                              : "least " + numberText(curve, series.least()) + ", greatest " +
                                                    numberText(curve, series.greatest()) + ", last " +
                                                    numberText(curve, series.last());
        auto line = curveColoured(mark + name, index, size.isColoured);
        line.append("  ").append(numbers);
        text += (size.isAscii ? tools::asciiOnly(line) : line) + '\n';
    }
    for (auto const& limit : data.limits) {
        auto const label = tools::safeText(limit.label);
        auto const& unit = data.curves.front().unit;
        auto const number = tools::exactText(limit.number) + (unit.empty() ? "" : ' ' + unit);
        auto const line = "- - " + number + (label.empty() ? "" : "  " + label);
        text += (size.isAscii ? tools::asciiOnly(line) : line) + '\n';
    }
    return text;
}

std::string heading(PlotData const& data, TerminalSize const& size) {
    auto const title = tools::safeText(data.title) + "  " + tools::momentText(data.from) + " to " +
                       tools::momentText(data.until);
    return (size.isAscii ? tools::asciiOnly(title) : title) + '\n';
}

/// The lines that each canvas gets.
std::size_t canvasHeight(PlotData const& data, std::size_t panels, TerminalSize const& size) {
    auto used = 1 + data.curves.size() + data.limits.size() + 3 * panels + 1; // the last one for the prompt
    for (auto const& curve : data.curves) {
        used += curve.series.spans().empty() ? 0 : 1;
    }
    return std::max(leastCanvas, (size.height - std::min(size.height, used)) / panels);
}

} // namespace

std::size_t dotColumns(std::size_t terminalWidth) {
    return terminalWidth * BrailleCanvas::dotsAcross;
}

std::string terminalPlot(PlotData const& data, TerminalSize const& terminal) {
    auto size = terminal;
    size.width = std::max(size.width, leastPlotWidth);
    size.height = std::max(size.height, leastPlotHeight);
    auto const panels = panelsOf(data);
    auto const height = canvasHeight(data, panels.size(), size);
    std::size_t labelWidth = 0;
    for (auto const& panel : panels) {
        labelWidth = std::max(labelWidth, PanelDrawing::labelWidthOf(data, panel, height));
    }
    labelWidth = std::min(labelWidth, size.width / 2);
    auto text = heading(data, size);
    for (auto const& panel : panels) {
        text += PanelDrawing(data, panel, size, labelWidth, height).text();
    }
    return text + legend(data, size);
}

} // namespace qel::plot
