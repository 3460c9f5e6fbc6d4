// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateText.h"

#include <gtest/gtest.h>

namespace qel::inspect {

TEST(StateTextTest, NamesStatesAsTheLibraryPrintsThem) {
    EXPECT_EQ("Expected Value", stateText(eStatus_ExpectedValue));
    EXPECT_EQ("Undefined Value", stateText(eStatus_UndefinedValue));
    EXPECT_EQ("No Error", stateText(eStatus_NoError));
    EXPECT_EQ("High Alarm", stateText(eStatus_HighAlarm));
    EXPECT_EQ("On, Alarm, Identify", stateText(eStatus_OnAlarmIdentify));
    EXPECT_EQ("Slave version to new", stateText(eStatus_SlaveVersionTooNew));
    EXPECT_EQ("UNKNOWN STATE", stateText(static_cast<eStatus_Bits>(44)));
}

} // namespace qel::inspect
