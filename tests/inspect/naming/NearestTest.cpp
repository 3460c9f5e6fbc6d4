// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Nearest.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::inspect {

TEST(NearestTest, EditDistance_CountsChangedMissingAndExtraLetters) {
    EXPECT_EQ(0U, editDistance("status", "status"));
    EXPECT_EQ(1U, editDistance("statis", "status"));
    EXPECT_EQ(1U, editDistance("stats", "status"));
    EXPECT_EQ(2U, editDistance("sttatuss", "status"));
    EXPECT_EQ(3U, editDistance("", "get"));
    EXPECT_EQ(3U, editDistance("get", ""));
}

TEST(NearestTest, EditDistance_IgnoresCase) {
    EXPECT_EQ(0U, editDistance("Unit1", "uNIT1"));
}

TEST(NearestTest, Nearest_IsTheFirstOfTheNearestOnes) {
    Nearest sut("unit3");
    EXPECT_EQ("", sut.candidate());
    EXPECT_EQ(std::numeric_limits<std::size_t>::max(), sut.distance());
    for (auto const* const candidate : {"group1", "unit1", "unit2"}) {
        sut.add(candidate);
    }
    EXPECT_EQ("unit1", sut.candidate());
    EXPECT_EQ(1U, sut.distance());
}

} // namespace qel::inspect
