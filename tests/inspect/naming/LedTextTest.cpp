// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/LedText.h"

#include <gtest/gtest.h>

namespace qel::inspect {

TEST(LedTextTest, SaysWhatTheLedShows) {
    EXPECT_EQ("off", ledText(eStatus_UndefinedValue));
    EXPECT_EQ("green", ledText(eStatus_On));
    EXPECT_EQ("red", ledText(eStatus_ChildAlarm));
    EXPECT_EQ("orange", ledText(eStatus_ChildWarning));
    EXPECT_EQ("red", ledText(eStatus_LostChild));
}

TEST(LedTextTest, NamesEachColourOfABlinkingLight) {
    EXPECT_EQ("magenta, blinking", ledText(eStatus_DeviceIsUpdating));
    EXPECT_EQ("magenta and red, blinking", ledText(eStatus_DeviceUpdateError));
}

TEST(LedTextTest, AStateWithoutColoursChangesNothing) {
    EXPECT_EQ("as before", ledText(eStatus_Off));
    EXPECT_EQ("as before", ledText(static_cast<eStatus_Bits>(44)));
    EXPECT_EQ("as before", ledText(static_cast<eStatus_Bits>(-3)));
}

} // namespace qel::inspect
