// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Graph.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

using Lines = std::vector<std::string>;

} // namespace

TEST(GraphTest, Bars_RiseFromTheBottomOfTheScaleToItsTop) {
    History history;
    for (unsigned bucket = 0; bucket < 9; ++bucket) {
        history.add(bucket, bucket);
    }
    auto const graph = graphOf(history, 8, 9, 1, blockBars);
    EXPECT_EQ(Lines{"▁▂▃▄▅▅▆▇█"}, graph.lines);
    EXPECT_EQ(0.0F, graph.range.min);
    EXPECT_EQ(8.0F, graph.range.max);
    EXPECT_EQ(8.0F, graph.range.last);
    EXPECT_EQ(0.0, graph.scale.low);
    EXPECT_EQ(8.0, graph.scale.high);
}

TEST(GraphTest, NarrowBand_DoesNotFillTheHeight) {
    History history;
    for (unsigned bucket = 0; bucket < 12; ++bucket) {
        history.add(bucket, 2600.0 + bucket);
    }
    auto const graph = graphOf(history, 11, 12, 2, blockBars);
    EXPECT_GE(graph.scale.high - graph.scale.low, 260.0);
    EXPECT_EQ(Lines({"▁▁▁▁▁▁▁▁▁▁▁▁", "████████████"}), graph.lines) << "about half-way up, and flat";
}

TEST(GraphTest, Lines_AreStackedUpwards) {
    History history;
    history.add(0, 0.0);
    history.add(1, 20.0);
    history.add(2, 10.5);
    EXPECT_EQ((Lines{" █▁", "▁██"}), graphOf(history, 2, 3, 2, blockBars).lines);
}

TEST(GraphTest, NewestBucket_StandsAtTheRight) {
    History history;
    history.add(10, 1.0);
    EXPECT_EQ(Lines{"   ▅  "}, graphOf(history, 12, 6, 1, blockBars).lines);
    EXPECT_EQ(Lines{"  "}, graphOf(history, 12, 2, 1, blockBars).lines) << "out of sight";
}

TEST(GraphTest, BucketsBeforeTheFirst_AreBlank) {
    History history;
    history.add(1, 1.0);
    EXPECT_EQ(Lines{"    ▅"}, graphOf(history, 1, 5, 1, blockBars).lines);
}

TEST(GraphTest, Range_CountsWhatABucketHidesButNothingOutOfSight) {
    History history;
    history.add(0, -100.0);
    history.add(1, 50.0);
    history.add(1, 2.0);
    history.add(2, 1.0);
    auto const graph = graphOf(history, 2, 2, 1, blockBars);
    EXPECT_EQ(1.0F, graph.range.min);
    EXPECT_EQ(50.0F, graph.range.max);
    EXPECT_EQ(1.0F, graph.range.last);
    EXPECT_EQ(Lines{"▁▁"}, graph.lines);
}

TEST(GraphTest, NothingSeen_IsBlankWithoutARange) {
    auto const graph = graphOf(History(), 5, 4, 2, blockBars);
    EXPECT_EQ((Lines{"    ", "    "}), graph.lines);
    EXPECT_TRUE(graph.range.isEmpty());
}

TEST(GraphTest, Ascii_HasCharactersOfItsOwn) {
    History history;
    for (unsigned bucket = 0; bucket < 8; ++bucket) {
        history.add(bucket, bucket);
    }
    EXPECT_EQ(Lines{"..::|||#"}, graphOf(history, 7, 8, 1, asciiBars).lines);
}

TEST(GraphTest, MoreColumnsThanHistory_StayBlankAtTheLeft) {
    History history;
    for (unsigned bucket = 0; bucket < 200; ++bucket) {
        history.add(bucket, 1.0);
    }
    auto const graph = graphOf(history, 199, History::length + 2, 1, asciiBars);
    EXPECT_EQ("  " + std::string(History::length, '|'), graph.lines.front());
}

} // namespace qel::watch
