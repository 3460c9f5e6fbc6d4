// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/LinesPane.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

class LinesPaneTest : public testing::Test {
protected:
    /// As many events as rounds.
    void happen(unsigned rounds) {
        watched.update(unit.snapshot(0));
        for (unsigned round = 1; round <= rounds; ++round) {
            unit.deliver(unit.inletPower, round, round, round % 2 == 0 ? eStatus_NoError : eStatus_HighAlarm);
            watched.update(unit.snapshot(round * std::uint64_t{1000}));
        }
    }

    std::string first() const {
        auto const lines = sut.lines(watched, nullptr);
        return lines.empty() ? "" : lines.front().text.substr(0, 20);
    }

    test::SmallUnit unit;
    WatchedUnit watched{WatchedNames({}), std::chrono::milliseconds(250)};
    LinesPane sut;
};

} // namespace

TEST_F(LinesPaneTest, Graph_HasNoLines) {
    happen(2);
    sut.setSize(5);
    sut.scroll(true, watched, nullptr);
    EXPECT_TRUE(sut.lines(watched, nullptr).empty());
}

TEST_F(LinesPaneTest, Show_ChangesBetweenLinesAndGraph) {
    sut.show(Pane::Why);
    EXPECT_EQ(Pane::Why, sut.kind());
    EXPECT_TRUE(sut.lines(watched, nullptr).empty()) << "no row is selected";
    sut.show(Pane::Events);
    EXPECT_EQ(Pane::Events, sut.kind());
    sut.show(Pane::Events);
    EXPECT_EQ(Pane::Graph, sut.kind());
}

TEST_F(LinesPaneTest, Events_ScrollBackAsFarAsThereAreLines) {
    happen(4);
    sut.show(Pane::Events);
    sut.setSize(2);
    EXPECT_EQ("2023-06-09T00:00:03Z", first());
    for (int step = 0; step < 9; ++step) {
        sut.scroll(true, watched, nullptr);
    }
    EXPECT_EQ("2023-06-09T00:00:01Z", first());
    sut.scroll(false, watched, nullptr);
    EXPECT_EQ("2023-06-09T00:00:02Z", first()) << "each step moves";
    sut.setSize(100);
    EXPECT_EQ(4U, sut.lines(watched, nullptr).size());
    sut.setSize(0);
    EXPECT_TRUE(sut.lines(watched, nullptr).empty());
}

} // namespace qel::watch
