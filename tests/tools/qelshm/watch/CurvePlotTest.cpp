// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/CurvePlot.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::watch {

namespace {

std::vector<std::string> textOf(CurvePlot const& plot) {
    std::vector<std::string> lines;
    for (auto const& line : plot.lines) {
        std::string text;
        for (auto const& cell : line) {
            text += cell.glyph;
        }
        lines.push_back(text);
    }
    return lines;
}

} // namespace

TEST(CurvePlotTest, CurvesOfOneKey_ShareAScale) {
    History low;
    History high;
    low.add(0, 0.0);
    low.add(1, 0.0);
    high.add(0, 80.0);
    high.add(1, 80.0);
    auto const plot = plotOf({{&low, 1}, {&high, 1}}, 1, 2, 2, PlotGlyphs::Letters);
    EXPECT_EQ((std::vector<std::string>{"bb", "aa"}), textOf(plot));
    EXPECT_EQ(80.0, plot.scales[0].high);
    EXPECT_EQ(80.0, plot.scales[1].high);
}

TEST(CurvePlotTest, CurvesOfDifferentKeys_HaveScalesOfTheirOwn) {
    History power;
    History current;
    power.add(0, 800.0);
    current.add(0, 4.0);
    auto const plot = plotOf({{&power, 1}, {&current, 2}}, 0, 1, 1, PlotGlyphs::Letters);
    EXPECT_EQ(840.0, plot.scales[0].high);
    EXPECT_LE(plot.scales[1].high, 5.0);
}

TEST(CurvePlotTest, CellOfTwoCurves_BelongsToTheFirst) {
    History one;
    one.add(0, 5.0);
    auto const plot = plotOf({{&one, 1}, {&one, 1}}, 0, 1, 1, PlotGlyphs::Letters);
    EXPECT_EQ(0U, plot.lines[0][0].curve);
    EXPECT_EQ("a", plot.lines[0][0].glyph);
}

TEST(CurvePlotTest, Steps_AreJoined) {
    History history;
    history.add(0, 0.0);
    history.add(1, 80.0);
    auto const plot = plotOf({{&history, 1}}, 1, 2, 2, PlotGlyphs::Dots);
    EXPECT_EQ((std::vector<std::string>{" ⡏", "⣀⡇"}), textOf(plot));
}

TEST(CurvePlotTest, BucketsWithoutNumbers_StayBlank) {
    History history;
    history.add(3, 1.0);
    auto const plot = plotOf({{&history, 1}}, 5, 5, 1, PlotGlyphs::Letters);
    EXPECT_EQ((std::vector<std::string>{"  a  "}), textOf(plot));
    EXPECT_EQ((std::vector<std::string>{"  "}), textOf(plotOf({{&history, 1}}, 9, 2, 1, PlotGlyphs::Dots)));
}

} // namespace qel::watch
