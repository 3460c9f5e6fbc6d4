// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/TerminalAbilities.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace qel::tools {

TEST(TerminalAbilitiesTest, CanAddressCursor_FollowsTheDescription) {
    ::setenv("TERM", "xterm", 1);
    EXPECT_TRUE(canAddressCursor(1));
    ::setenv("TERM", "vt100", 1);
    EXPECT_TRUE(canAddressCursor(1));
    for (auto const* const name : {"dumb", "no-such-terminal", ""}) {
        ::setenv("TERM", name, 1);
        EXPECT_FALSE(canAddressCursor(1)) << name;
    }
    ::unsetenv("TERM");
    EXPECT_FALSE(canAddressCursor(1));
}

TEST(TerminalAbilitiesTest, KnowsColours_FollowsTheDescription) {
    ::setenv("TERM", "xterm", 1);
    EXPECT_TRUE(knowsColours(1));
    ::setenv("TERM", "vt100", 1);
    EXPECT_FALSE(knowsColours(1));
}

} // namespace qel::tools
