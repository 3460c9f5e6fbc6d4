// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/SameNumber.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::watch {

TEST(SameNumberTest, NotANumber_IsTheSameAsItselfOnly) {
    auto const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(isSameNumber(nan, -nan));
    EXPECT_FALSE(isSameNumber(nan, 0.0));
    EXPECT_FALSE(isSameNumber(0.0, nan));
    EXPECT_TRUE(isSameNumber(1.5, 1.5));
    EXPECT_FALSE(isSameNumber(1.5, 1.25));
}

} // namespace qel::watch
