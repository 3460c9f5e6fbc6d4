// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/eStatus_Bits.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <type_traits>

namespace {

TEST(eStatusBitsTest, IsASigned32BitNumber) {
    static_assert(std::is_same_v<std::underlying_type_t<eStatus_Bits>, std::int32_t>);
    EXPECT_EQ(static_cast<std::int32_t>(static_cast<eStatus_Bits>(-2000000000)), -2000000000);
}

TEST(eStatusBitsTest, StatesAreNumberedWithoutGaps) {
    std::array const states{eStatus_ExpectedValue,
                            eStatus_UndefinedValue,
                            eStatus_NoError,
                            eStatus_HighAlarm,
                            eStatus_LowAlarm,
                            eStatus_HighWarning,
                            eStatus_LowWarning,
                            eStatus_Lost,
                            eStatus_Deactivated,
                            eStatus_OnAlarmIdentify,
                            eStatus_OffAlarmIdentify,
                            eStatus_OnAlarm,
                            eStatus_OffAlarm,
                            eStatus_OnWarningIdentify,
                            eStatus_OffWarningIdentify,
                            eStatus_OnWarning,
                            eStatus_OffWarning,
                            eStatus_OnIdentify,
                            eStatus_OffIdentify,
                            eStatus_On,
                            eStatus_Off,
                            eStatus_OnChildAlarm,
                            eStatus_OffChildAlarm,
                            eStatus_OnChildWarning,
                            eStatus_OffChildWarning,
                            eStatus_ChildAlarm,
                            eStatus_ChildWarning,
                            eStatus_LostChild,
                            eStatus_FixInternalHighAlarm,
                            eStatus_FixInternalHighWarning,
                            eStatus_FixInternalLowWarning,
                            eStatus_FixInternalLowAlarm,
                            eStatus_HighUserAndInternalError,
                            eStatus_HighUserErrorInternalWarning,
                            eStatus_HighUserWarningInternalError,
                            eStatus_HighUserAndInternalWarning,
                            eStatus_DeviceIsUpdating,
                            eStatus_DeviceUpdateError,
                            eStatus_OngoingSwitchOn,
                            eStatus_High,
                            eStatus_Low,
                            eStatus_Alarm,
                            eStatus_Warning,
                            eStatus_OK,
                            eStatus_Disabled,
                            eStatus_SlaveVersionTooNew};
    ASSERT_EQ(states.size(), 46U);
    std::int32_t number = -2;
    for (auto const state : states) {
        EXPECT_EQ(state, number);
        ++number;
    }
}

} // namespace
