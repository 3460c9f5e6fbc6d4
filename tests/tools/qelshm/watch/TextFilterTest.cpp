// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/TextFilter.h"

#include <gtest/gtest.h>

namespace qel::watch {

TEST(TextFilterTest, NoWords_MatchEverything) {
    EXPECT_TRUE(TextFilter().isEmpty());
    EXPECT_TRUE(TextFilter(" \t ").isEmpty());
    EXPECT_TRUE(TextFilter().matches({"anything"}));
    EXPECT_TRUE(TextFilter().matches({}));
}

TEST(TextFilterTest, EachWord_MustOccurInOneOfTheTexts) {
    TextFilter const sut("socket6 POWER");
    EXPECT_FALSE(sut.isEmpty());
    EXPECT_TRUE(sut.matches({"unit1/inlet1/socket6", "active power"}));
    EXPECT_TRUE(sut.matches({"socket6 power"}));
    EXPECT_FALSE(sut.matches({"unit1/inlet1/socket6", "voltage"}));
    EXPECT_FALSE(sut.matches({"unit1/inlet1/socket5", "active power"}));
    EXPECT_FALSE(sut.matches({}));
}

} // namespace qel::watch
