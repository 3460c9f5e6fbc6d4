// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Style.h"

#include <gtest/gtest.h>

namespace qel::tools {

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

} // namespace qel::tools
