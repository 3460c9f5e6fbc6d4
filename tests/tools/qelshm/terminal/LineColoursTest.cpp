// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/LineColours.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>

namespace qel::watch {

TEST(LineColoursTest, None_LeaveTextAsItIs) {
    EXPECT_EQ("Lost", LineColours().painted("Lost", Severity::Alarm));
}

TEST(LineColoursTest, KnownTerminal_GetsItsOwnColours) {
    ::setenv("TERM", "xterm", 1);
    LineColours const sut(STDOUT_FILENO);
    EXPECT_EQ("\x1b[31mLost", sut.painted("Lost", Severity::Alarm).substr(0, 9));
    EXPECT_EQ("\x1b[33m", sut.painted("", Severity::Warning).substr(0, 5));
    EXPECT_EQ("\x1b[36m", sut.painted("", Severity::Notice).substr(0, 5));
    EXPECT_NE("\x1b[31mLost", sut.painted("Lost", Severity::Alarm)) << "ends the colour";
    EXPECT_EQ("No Error", sut.painted("No Error", Severity::Normal));
    EXPECT_EQ("n/a", sut.painted("n/a", Severity::None));
}

TEST(LineColoursTest, TerminalWithoutColoursOrUnknown_GetsNone) {
    for (auto const* const name : {"vt100", "no-such-terminal"}) {
        ::setenv("TERM", name, 1);
        EXPECT_EQ("Lost", LineColours(STDOUT_FILENO).painted("Lost", Severity::Alarm)) << name;
    }
}

TEST(LineColoursTest, NoColor_ForbidsThemUnlessItIsEmpty) {
    ::unsetenv("NO_COLOR");
    EXPECT_TRUE(areColoursAllowed());
    ::setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(areColoursAllowed());
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(areColoursAllowed());
}

} // namespace qel::watch
