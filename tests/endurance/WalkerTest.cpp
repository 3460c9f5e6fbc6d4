// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/endurance/Walker.h"

#include <gtest/gtest.h>

namespace qel::test {

namespace {

TEST(WalkerTest, QuestionThatArrivesAlongWithTheCommandToWalk_EndsTheWalk) {
    Walker walker;
    walker.process().writeLine("hammer \nmapped"); // one write, so the process may read both at once
    EXPECT_TRUE(walker.process().readLine().has_value());
    EXPECT_EQ("no", walker.process().readLine());
}

} // namespace

} // namespace qel::test
