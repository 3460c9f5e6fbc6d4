// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/ExactText.h"

#include <gtest/gtest.h>

namespace qel::tools {

TEST(ExactTextTest, Digits_IdentifyTheNumber) {
    EXPECT_EQ("230.1", exactText(230.1));
    EXPECT_EQ("0.30000000000000004", exactText(0.1 + 0.2));
    EXPECT_EQ("-1e+30", exactText(-1e30));
    EXPECT_EQ("0", exactText(0.0));
}

} // namespace qel::tools
