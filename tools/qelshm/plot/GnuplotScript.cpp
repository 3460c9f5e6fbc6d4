// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/GnuplotScript.h"

#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/plot/Axis.h"
#include "tools/qelshm/terminal/ExactText.h"

#include <array>
#include <sstream>

namespace qel::plot {

namespace {

/// Colours that people with any eyes tell apart.
constexpr std::array<char const*, 8> lineColours{"#0072b2", "#e69f00", "#009e73", "#cc79a7",
                                                 "#56b4e9", "#d55e00", "#000000", "#7f7f7f"};
constexpr std::size_t mostNumberTicks = 6;

/// Seconds since 1970 with their fraction, without the rounding of a double.
std::string secondsText(std::uint64_t time) {
    constexpr std::uint64_t msPerSecond = 1000;
    auto const fraction = std::to_string(msPerSecond + time % msPerSecond).substr(1);
    return std::to_string(time / msPerSecond) + '.' + fraction;
}

void printData(std::ostream& out, PlotData const& data) {
    for (std::size_t index = 0; index < data.curves.size(); ++index) {
        out << "$curve" << index << " << END\n";
        for (auto const& piece : data.curves[index].series.pieces()) {
            for (auto const& point : piece) {
                out << secondsText(point.time) << ' ' << tools::exactText(point.number) << '\n';
            }
            if (piece.size() == 1) { // a line needs two points
                out << secondsText(piece.front().time) << ' ' << tools::exactText(piece.front().number)
                    << '\n';
            }
            out << '\n';
        }
        out << "END\n";
    }
}

void printTimes(std::ostream& out, PlotData const& data, PictureSize const& size) {
    constexpr std::size_t pixelsPerTick = 110;
    auto const until = data.until == data.from ? data.until + 1 : data.until;
    out << "set xrange [" << secondsText(data.from) << ':' << secondsText(until) << "]\nset xtics (";
    char const* separator = "";
    for (auto const& tick : timeTicks(data.from, until, size.width / pixelsPerTick + 1)) {
        out << separator << gnuplotText(tick.text) << ' ' << secondsText(tick.time);
        separator = ", ";
    }
    out << ")\n";
}

void printSpans(std::ostream& out, PlotData const& data, Panel const& panel) {
    out << "unset object\n";
    for (bool const isAlarm : {false, true}) { // alarms cover warnings
        for (auto const index : panel.curves) {
            for (auto const& span : data.curves[index].series.spans()) {
                if (span.isAlarm == isAlarm) {
                    out << "set object rectangle from first " << secondsText(span.from)
                        << ", graph 0 to first " << secondsText(span.until)
                        << ", graph 1 behind fillstyle solid noborder fillcolor rgb '"
                        << (isAlarm ? "#f8cccc" : "#fbf0c4") << "'\n";
                }
            }
        }
    }
}

void printLimits(std::ostream& out, PlotData const& data) {
    out << "unset arrow\nunset label\n";
    for (auto const& limit : data.limits) {
        auto const number = tools::exactText(limit.number);
        out << "set arrow from graph 0, first " << number << " to graph 1, first " << number
            << " nohead front linewidth 1.2 dashtype 2 linecolor rgb '#b00020'\n"
            << "set label " << gnuplotText(limit.label.empty() ? number : limit.label)
            << " at graph 0.01, first " << number
            << " offset 0, 0.6 front noenhanced textcolor rgb '#b00020'\n";
    }
}

void printPanel(std::ostream& out, PlotData const& data, Panel const& panel) {
    auto const [least, greatest] = rangeOf(data, panel);
    auto const axis = numberAxis(least, greatest, mostNumberTicks);
    out << "set yrange [" << tools::exactText(axis.low) << ':' << tools::exactText(axis.high)
        << "]\nset ytics (";
    char const* separator = "";
    for (auto const tick : axis.ticks()) {
        out << separator << gnuplotText(axis.text(tick)) << ' ' << tools::exactText(tick);
        separator = ", ";
    }
    out << ")\nset ylabel " << gnuplotText(panel.unit) << " noenhanced\n";
    printSpans(out, data, panel);
    printLimits(out, data);
    separator = "plot ";
    for (auto const index : panel.curves) {
        auto const& curve = data.curves[index];
        out << separator;
        // A block without points would be an error.
        out << (curve.series.isEmpty() ? "NaN" : "$curve" + std::to_string(index) + " using 1:2")
            << " with lines linewidth 1.5 linecolor rgb '" << lineColours.at(index % lineColours.size())
            << "' title " << gnuplotText(curve.name) << " noenhanced";
        separator = ", ";
    }
    out << '\n';
}

std::string withoutNoCharacters(std::string text) {
    for (std::string const code : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (auto found = text.find(code); found != std::string::npos; found = text.find(code)) {
            text.replace(found, code.size(), "?");
        }
    }
    return text;
}

} // namespace

std::string gnuplotScript(PlotData const& data, PictureSize const& size) {
    std::ostringstream out;
    out << "set encoding utf8\nset terminal svg size " << size.width << ',' << size.height
        << " dynamic noenhanced background rgb 'white' font 'sans-serif,12'\n";
    printData(out, data);
    printTimes(out, data, size);
    auto const panels = panelsOf(data);
    auto const title =
        data.title + "  " + tools::momentText(data.from) + " to " + tools::momentText(data.until);
    out << "set grid linecolor rgb '#dddddd' linetype 1\nset tics nomirror\nset border 3\n"
        << "set key outside below left vertical maxrows 4 noenhanced\n"
        << "set multiplot layout " << panels.size() << ",1 title " << gnuplotText(title) << " noenhanced\n";
    for (auto const& panel : panels) {
        printPanel(out, data, panel);
    }
    out << "unset multiplot\n";
    return out.str();
}

std::string gnuplotText(std::string_view text) {
    // Between double quotes only letters, digits and some more stand for themselves; the others go by their octal codes,
    // so no quote, backquote or backslash is left. U+FFFE and U+FFFF must not stand in XML.
    constexpr std::string_view plain = " -./:_";
    constexpr unsigned bitsPerDigit = 3;
    constexpr unsigned digit = 7;
    auto const safe = withoutNoCharacters(tools::safeText(text));
    std::string quoted(1, '"');
    for (char const letter : safe) {
        auto const byte = static_cast<unsigned char>(letter);
        bool const isLetter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
        if (isLetter || (letter >= '0' && letter <= '9') || plain.find(letter) != std::string_view::npos) {
            quoted += letter;
            continue;
        }
        quoted += '\\';
        for (unsigned shift = 2 * bitsPerDigit + bitsPerDigit; shift != 0;) {
            shift -= bitsPerDigit;
            quoted += static_cast<char>('0' + (byte >> shift & digit));
        }
    }
    return quoted + '"';
}

} // namespace qel::plot
