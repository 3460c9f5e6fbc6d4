// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/TableLayout.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

int sumOf(TableLayout const& layout) {
    return layout.name + layout.value + layout.state + layout.minimum + layout.maximum + layout.mean +
           layout.rate + layout.age;
}

} // namespace

TEST(TableLayoutTest, EveryWidth_IsFilledExactly) {
    for (bool const withStatistics : {false, true}) {
        for (int columns = 1; columns <= 250; ++columns) {
            auto const sut = layoutOf(columns, withStatistics);
            EXPECT_EQ(columns, sumOf(sut)) << columns;
            EXPECT_GE(sut.name, columns / 3) << columns;
        }
    }
}

TEST(TableLayoutTest, NarrowScreen_GivesUpAgeThenTypeThenState) {
    auto const wide = layoutOf(80, false);
    EXPECT_GT(wide.age, 0);
    EXPECT_TRUE(wide.isTypeShown);
    EXPECT_EQ(2, wide.indent);
    auto const narrow = layoutOf(62, false);
    EXPECT_EQ(0, narrow.age);
    EXPECT_TRUE(narrow.isTypeShown);
    auto const narrower = layoutOf(40, false);
    EXPECT_EQ(0, narrower.age);
    EXPECT_FALSE(narrower.isTypeShown);
    EXPECT_GE(narrower.name, 16) << "names stay readable";
    EXPECT_GT(narrower.state, 0);
    EXPECT_EQ(0, layoutOf(30, false).state);
}

TEST(TableLayoutTest, Statistics_ShowAsManyColumnsAsFit) {
    auto const wide = layoutOf(140, true);
    EXPECT_GT(wide.rate, 0);
    EXPECT_GT(wide.age, 0);
    auto const medium = layoutOf(100, true);
    EXPECT_EQ(0, medium.age);
    EXPECT_EQ(0, medium.rate);
    EXPECT_GT(medium.mean, 0);
    auto const narrow = layoutOf(60, true);
    EXPECT_EQ(0, narrow.minimum);
    EXPECT_GT(narrow.value, 0);
    EXPECT_EQ(0, layoutOf(140, false).minimum);
}

} // namespace qel::watch
