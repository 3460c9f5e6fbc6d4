// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// State of a measured value, of a measurement point or of the whole unit.
#pragma once

#include <cstdint>

/// One state each, despite the name: the enumerators are numbers, not bits to combine. A state travels as a signed
/// 32-bit number; numbers outside the range below can arrive from the region and are legal values of this type.
enum eStatus_Bits : std::int32_t {
    eStatus_ExpectedValue = -2,
    eStatus_UndefinedValue = -1,
    eStatus_NoError = 0,
    eStatus_HighAlarm = 1,
    eStatus_LowAlarm = 2,
    eStatus_HighWarning = 3,
    eStatus_LowWarning = 4,
    eStatus_Lost = 5,
    eStatus_Deactivated = 6,
    eStatus_OnAlarmIdentify = 7,
    eStatus_OffAlarmIdentify = 8,
    eStatus_OnAlarm = 9,
    eStatus_OffAlarm = 10,
    eStatus_OnWarningIdentify = 11,
    eStatus_OffWarningIdentify = 12,
    eStatus_OnWarning = 13,
    eStatus_OffWarning = 14,
    eStatus_OnIdentify = 15,
    eStatus_OffIdentify = 16,
    eStatus_On = 17,
    eStatus_Off = 18,
    eStatus_OnChildAlarm = 19,
    eStatus_OffChildAlarm = 20,
    eStatus_OnChildWarning = 21,
    eStatus_OffChildWarning = 22,
    eStatus_ChildAlarm = 23,
    eStatus_ChildWarning = 24,
    eStatus_LostChild = 25,
    eStatus_FixInternalHighAlarm = 26,
    eStatus_FixInternalHighWarning = 27,
    eStatus_FixInternalLowWarning = 28,
    eStatus_FixInternalLowAlarm = 29,
    eStatus_HighUserAndInternalError = 30,
    eStatus_HighUserErrorInternalWarning = 31,
    eStatus_HighUserWarningInternalError = 32,
    eStatus_HighUserAndInternalWarning = 33,
    eStatus_DeviceIsUpdating = 34,
    eStatus_DeviceUpdateError = 35,
    eStatus_OngoingSwitchOn = 36,
    eStatus_High = 37,
    eStatus_Low = 38,
    eStatus_Alarm = 39,
    eStatus_Warning = 40,
    eStatus_OK = 41,
    eStatus_Disabled = 42,
    eStatus_SlaveVersionTooNew = 43,
};
