// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/SameBits.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::inspect {

TEST(SameBitsTest, ComparesTheBytes) {
    auto const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(hasSameBits(nan, nan));
    EXPECT_TRUE(hasSameBits(1.5, 1.5));
    EXPECT_FALSE(hasSameBits(0.0, -0.0));
    EXPECT_FALSE(hasSameBits(1.5, 1.6));
    EXPECT_FALSE(hasSameBits(1, 2));
}

} // namespace qel::inspect
