// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PlotCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/qelshm/plot/Gnuplot.h"
#include "tools/qelshm/plot/GnuplotScript.h"
#include "tools/qelshm/plot/TerminalPlot.h"
#include "tools/qelshm/terminal/TextTable.h"

#include "format/KeyTable.h"
#include "inspect/image/OutputFile.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/ValuePath.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstring>
#include <filesystem>

namespace qel::tools {

namespace {

constexpr std::size_t mostCurves = 8;
constexpr plot::PictureSize picture{1000, 420}; // pixels

constexpr char const* plotHelp =
    R"(NAME is a value, with wildcards: unit1/inlet1:active-power, unit1/**:current; at most 8 values. Values of different
units get a plot each. Below a plot, ! marks alarms and ~ warnings. A region does not hold limits: give them by --limit.
For SVG gnuplot draws (package gnuplot-nox).

Examples:
  qelshm plot night.rec unit1/inlet1:active-power --limit 2400=contract
  qelshm plot night.rec 'unit1/**:current' --from -30m -o current.svg)";

/// NUMBER or NUMBER=LABEL.
std::optional<plot::Limit> parseLimit(std::string const& text) {
    auto const equals = text.find('=');
    auto const number = parseNumber(std::string_view(text).substr(0, equals));
    if (!number) {
        return std::nullopt;
    }
    return plot::Limit{*number, equals == std::string::npos ? std::string() : text.substr(equals + 1)};
}

std::string limitProblem(std::string const& text) {
    return parseLimit(text)
               ? ""
               : '"' + text + "\" is no limit; expected a number or NUMBER=LABEL, in the unit of the plot";
}

/// Of the terminal; none if the output is something else.
std::optional<winsize> terminalSize() {
    winsize size{};
    bool const isKnown =
        ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 && size.ws_row != 0;
    return isKnown ? std::optional(size) : std::nullopt;
}

bool isAsciiLocale() {
    static_cast<void>(std::setlocale(LC_CTYPE, ""));
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0;
}

} // namespace

CLI::App& PlotCommand::define(CLI::App& app, OptionalOptions const& optional) {
    constexpr std::size_t most = 1000;
    auto& verb = *app.add_subcommand("plot", "Draw values of a capture over time");
    verb.footer(plotHelp);
    arguments_.define(verb, optional, "Values to draw", true);
    verb.add_option("-o,--output", output_,
                    "Write SVG to a file instead of drawing on the terminal; - is standard output")
        ->type_name("FILE");
    verb.add_option("--limit", limits_, "Draw a line at a number; repeatable")
        ->check(limitProblem)
        ->allow_extra_args(false)
        ->type_name("NUMBER[=LABEL]");
    verb.add_option("--width", width_, "Columns, 40 to 1000; those of the terminal by default")
        ->check(CLI::Range(plot::leastPlotWidth, most).description(""))
        ->type_name("COLUMNS");
    verb.add_option("--height", height_, "Lines, 10 to 1000; those of the terminal by default")
        ->check(CLI::Range(plot::leastPlotHeight, most).description(""))
        ->type_name("LINES");
    verb.add_flag("--ascii", isAscii_, "Draw with letters instead of dots");
    verb.excludes(optional.json);
    return verb;
}

int PlotCommand::run(CommandContext const& context) {
    arguments_.requireOther(output_);
    auto const timeline = arguments_.timeline(context);
    if (output_.empty()) {
        printOnTerminal(context, timeline);
        return exitSuccess;
    }
    auto const svg = plot::runGnuplot(plot::gnuplotScript(data(timeline, picture.width), picture));
    if (output_ == "-") {
        writeOutput(context.out, svg);
        return exitSuccess;
    }
    inspect::OutputFile file(output_);
    file.write(svg);
    file.finish();
    return exitSuccess;
}

void PlotCommand::printOnTerminal(CommandContext const& context,
                                  inspect::CaptureTimeline const& timeline) const {
    constexpr std::size_t usualWidth = 80;
    constexpr std::size_t usualHeight = 24;
    auto const terminal = terminalSize();
    plot::TerminalSize size{};
    size.width = width_.value_or(terminal ? terminal->ws_col : usualWidth);
    size.height = height_.value_or(terminal ? terminal->ws_row : usualHeight);
    size.isColoured = context.isColoured;
    size.isAscii = isAscii_ || (terminal && isAsciiLocale());
    writeOutput(context.out, plot::terminalPlot(data(timeline, plot::dotColumns(size.width)), size));
}

plot::PlotData PlotCommand::data(inspect::CaptureTimeline const& timeline, std::size_t columns) const {
    auto const range = arguments_.range(timeline);
    auto const values = arguments_.values(timeline, range);
    if (values.size() > mostCurves) {
        throw inspect::NotFoundError(std::to_string(values.size()) +
                                     " values have these names; a plot shows " + std::to_string(mostCurves) +
                                     " at most");
    }
    plot::PlotData data{
        std::filesystem::path(timeline.path()).filename().string(), range.from, range.until, {}, {}};
    for (auto const& value : values) {
        data.curves.push_back({inspect::valuePath(value.point, value.key),
                               std::string(shm::keyUnit(value.key)), value.key,
                               plot::Series(range.from, range.until, columns)});
    }
    for (auto const& limit : limits_) {
        data.limits.push_back(parseLimit(limit).value());
    }
    if (!limits_.empty() && plot::panelsOf(data).size() > 1) {
        throw inspect::NotFoundError("--limit needs values of one unit; plot them one unit at a time");
    }
    inspect::SelectedValues selected(arguments_.patterns());
    auto const pause = timeline.longestPause();
    forEachSample(timeline, range.from, range.until, [&](inspect::CaptureReader const& reader, auto next) {
        selected.follow(reader.region());
        auto const moment = reader.moment();
        for (std::size_t index = 0; index < data.curves.size(); ++index) {
            auto& series = data.curves[index].series;
            auto const* const value = selected.value(index);
            series.add(moment, inspect::deliveredNumber(value),
                       value == nullptr ? inspect::StateClass::NoValue : inspect::classOf(value->state));
            if (next && *next - moment > pause) {
                series.pause(moment);
            } else if (!next) {
                series.end(range.until);
            }
        }
    });
    return data;
}

} // namespace qel::tools
