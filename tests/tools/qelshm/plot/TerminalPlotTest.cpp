// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/TerminalPlot.h"

#include "tools/qelshm/terminal/Utf8Text.h"

#include "format/ValueKeys.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace qel::plot {

namespace {

using inspect::StateClass;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint64_t plotStart = 1'700'000'000'000;

Curve curve(std::string const& name, std::string const& unit, double first, double last) {
    Curve curve{name, unit, shm::key::activePower, Series(plotStart, plotStart + 60000, 200)};
    for (std::uint64_t second = 0; second <= 60; ++second) {
        auto const part = static_cast<double>(second) / 60.0;
        curve.series.add(plotStart + second * 1000, first + part * (last - first),
                         second >= 30 && second < 40 ? StateClass::Alarm : StateClass::Plain);
    }
    return curve;
}

PlotData plotOf(std::vector<Curve> curves) {
    return {"night.rec", plotStart, plotStart + 60000, std::move(curves), {}};
}

constexpr TerminalSize plain{80, 24, false, false};

} // namespace

TEST(TerminalPlotTest, Lines_FitTheTerminal) {
    auto const text = terminalPlot(plotOf({curve("a:x", "W", 0, 10), curve("b:x", "W", 5, 1)}), plain);
    EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 24) << "and leave one for the prompt";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(tools::widthOf(line), 80U) << line;
    }
}

TEST(TerminalPlotTest, SeveralCurves_AreToldApartWithoutColour) {
    auto const text = terminalPlot(plotOf({curve("x:x", "W", 0, 10), curve("y:x", "W", 5, 1)}), plain);
    EXPECT_THAT(text, AllOf(HasSubstr("\na  x:x  least 0.0 W, greatest 10.0 W, last 10.0 W\n"),
                            HasSubstr("\nb  y:x  least 1.0 W, greatest 5.0 W, last 1.0 W\n"),
                            Not(HasSubstr("\x1b"))));
    EXPECT_GT(std::count(text.begin(), text.end(), 'b'), 2)
        << "letters on the curve, in its row of alarms, below";
}

TEST(TerminalPlotTest, Colour_DiffersByCurve) {
    auto const text =
        terminalPlot(plotOf({curve("x:x", "W", 0, 10), curve("y:x", "W", 5, 1)}), {80, 24, true, false});
    EXPECT_THAT(text,
                AllOf(HasSubstr("\x1b[36ma  x:x"), HasSubstr("\x1b[35mb  y:x"), HasSubstr("\x1b[31m!")));
}

TEST(TerminalPlotTest, Alarms_AreMarkedBelow) {
    EXPECT_THAT(terminalPlot(plotOf({curve("a:x", "W", 0, 10)}), plain), HasSubstr("  !!!!!!!"));
}

TEST(TerminalPlotTest, UnitsAndLimits_AreShown) {
    auto data = plotOf({curve("a:x", "W", 0, 10)});
    data.limits = {{20.0, "fuse\x1b[2J"}};
    auto const text = terminalPlot(data, plain);
    EXPECT_THAT(text, AllOf(HasSubstr("- - - -"), HasSubstr("- - 20 W  fuse\\x1B[2J"), HasSubstr("20 ┤")));
    auto const two = terminalPlot(plotOf({curve("a:x", "W", 0, 10), curve("b:y", "V", 5, 1)}), plain);
    EXPECT_THAT(two, AllOf(HasSubstr(" W\n"), HasSubstr(" V\n")));
}

TEST(TerminalPlotTest, Ascii_HasNothingElse) {
    auto const text = terminalPlot(plotOf({curve("a:x", "°C", 0, 10)}), {80, 24, false, true});
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char letter) {
        return static_cast<unsigned char>(letter) < 0x80;
    })) << text;
    EXPECT_THAT(text, HasSubstr("aaaa"));
}

TEST(TerminalPlotTest, NothingDelivered_IsSaid) {
    Curve const empty{"a:x", "W", shm::key::activePower, Series(plotStart, plotStart + 60000, 10)};
    EXPECT_THAT(terminalPlot(plotOf({empty}), plain), HasSubstr("a:x  nothing was delivered\n"));
}

TEST(TerminalPlotTest, SmallTerminal_GetsTheLeastPlot) {
    EXPECT_THAT(terminalPlot(plotOf({curve("a:x", "W", 0, 10)}), {1, 1, false, false}), HasSubstr("┤"));
}

} // namespace qel::plot
