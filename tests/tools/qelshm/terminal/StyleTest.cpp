// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Style.h"

#include "format/StateName.h"

#include <gtest/gtest.h>

#include <pty.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace qel::tools {

namespace {

/// A terminal, and the variables that decide on its colours.
class MayColourTest : public testing::Test {
protected:
    MayColourTest() {
        EXPECT_EQ(0, ::openpty(&ends_[0], &ends_[1], nullptr, nullptr, nullptr));
        ::unsetenv("NO_COLOR");
        ::setenv("TERM", "xterm", 1);
    }
    ~MayColourTest() override {
        ::close(ends_[0]);
        ::close(ends_[1]);
    }

    int terminal() const { return ends_[1]; }

private:
    std::array<int, 2> ends_{};
};

} // namespace

TEST(StyleTest, StateStyle_FollowsTheStatesClass) {
    EXPECT_EQ(Style::Alarm, stateStyle(eStatus_HighAlarm));
    EXPECT_EQ(Style::Alarm, stateStyle(eStatus_Lost));
    EXPECT_EQ(Style::Alarm, stateStyle(eStatus_DeviceUpdateError));
    EXPECT_EQ(Style::Warning, stateStyle(eStatus_ChildWarning));
    EXPECT_EQ(Style::Good, stateStyle(eStatus_On));
    EXPECT_EQ(Style::Faint, stateStyle(eStatus_Off));
    EXPECT_EQ(Style::Faint, stateStyle(eStatus_ExpectedValue));
    EXPECT_EQ(Style::Busy, stateStyle(eStatus_DeviceIsUpdating));
    EXPECT_EQ(Style::Plain, stateStyle(eStatus_NoError));
}

TEST(StyleTest, StateStyleOfNoState_IsPlain) {
    EXPECT_EQ(Style::Plain, stateStyle(static_cast<eStatus_Bits>(44)));
    EXPECT_EQ(Style::Plain, stateStyle(static_cast<eStatus_Bits>(-3)));
}

TEST(StyleTest, Styled_WrapsTheText) {
    EXPECT_EQ("On", styled("On", Style::Plain));
    EXPECT_EQ("\x1b[32mOn\x1b[0m", styled("On", Style::Good));
    EXPECT_EQ("\x1b[31mAlarm\x1b[0m", styled("Alarm", Style::Alarm));
    EXPECT_EQ("\x1b[33mWarning\x1b[0m", styled("Warning", Style::Warning));
    EXPECT_EQ("\x1b[2mOff\x1b[0m", styled("Off", Style::Faint));
    EXPECT_EQ("\x1b[35mUpdate\x1b[0m", styled("Update", Style::Busy));
}

TEST(StyleTest, StateStyle_FollowsTheStatesName) {
    for (int number = eStatus_ExpectedValue; number <= eStatus_SlaveVersionTooNew; ++number) {
        auto const state = static_cast<eStatus_Bits>(number);
        auto const name = shm::stateName(state);
        for (char const* const word : {"Alarm", "Lost", "Error,"}) {
            if (name.find(word) != std::string_view::npos) {
                EXPECT_EQ(Style::Alarm, stateStyle(state)) << name;
            }
        }
    }
}

TEST_F(MayColourTest, Choice_HoldsWhateverTheOutputIs) {
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_TRUE(mayColour("always", terminal()));
    ::unsetenv("NO_COLOR");
    EXPECT_FALSE(mayColour("never", terminal()));
}

TEST_F(MayColourTest, TerminalWithColours_IsColoured) {
    EXPECT_TRUE(mayColour("auto", terminal()));
}

TEST_F(MayColourTest, TerminalWithoutColoursOrUnknown_IsNot) {
    for (auto const* const name : {"vt100", "dumb", "no-such-terminal"}) {
        ::setenv("TERM", name, 1);
        EXPECT_FALSE(mayColour("auto", terminal())) << name;
    }
}

TEST_F(MayColourTest, NoColor_ForbidsColoursUnlessItIsEmpty) {
    ::setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(mayColour("auto", terminal()));
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(mayColour("auto", terminal()));
}

TEST_F(MayColourTest, Pipe_IsNotColoured) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, ::pipe(ends.data()));
    EXPECT_FALSE(mayColour("auto", ends[1]));
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace qel::tools
