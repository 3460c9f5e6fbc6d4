// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// State of a measured value, of a measurement point or of the whole unit.
#pragma once

#include <cstdint>

/// One state each, despite the name: the enumerators are numbers, not bits to combine. A state travels as a signed
/// 32-bit number; numbers outside the range below can arrive from the region and are legal values of this type.
enum eStatus_Bits : std::int32_t {
    eStatus_ExpectedValue = -2,            ///< a value that was not delivered yet
    eStatus_UndefinedValue = -1,           ///< no state: a free slot or a wiped root
    eStatus_NoError = 0,                   ///< a measured value within its limits
    eStatus_HighAlarm = 1,                 ///< a measured value above its upper alarm limit
    eStatus_LowAlarm = 2,                  ///< a measured value below its lower alarm limit
    eStatus_HighWarning = 3,               ///< a measured value above its upper warning limit
    eStatus_LowWarning = 4,                ///< a measured value below its lower warning limit
    eStatus_Lost = 5,                      ///< not answering; the number is the last one known
    eStatus_Deactivated = 6,               ///< taken out of operation by a user
    eStatus_OnAlarmIdentify = 7,           ///< switched on, a value alarms, being identified
    eStatus_OffAlarmIdentify = 8,          ///< switched off, a value alarms, being identified
    eStatus_OnAlarm = 9,                   ///< switched on, a value alarms
    eStatus_OffAlarm = 10,                 ///< switched off, a value alarms
    eStatus_OnWarningIdentify = 11,        ///< switched on, a value warns, being identified
    eStatus_OffWarningIdentify = 12,       ///< switched off, a value warns, being identified
    eStatus_OnWarning = 13,                ///< switched on, a value warns
    eStatus_OffWarning = 14,               ///< switched off, a value warns
    eStatus_OnIdentify = 15,               ///< switched on, being identified: it shows where it is
    eStatus_OffIdentify = 16,              ///< switched off, being identified
    eStatus_On = 17,                       ///< switched on, all well; new points start with it
    eStatus_Off = 18,                      ///< switched off
    eStatus_OnChildAlarm = 19,             ///< switched on, a point below it alarms; no rule produces it
    eStatus_OffChildAlarm = 20,            ///< switched off, a point below it alarms
    eStatus_OnChildWarning = 21,           ///< switched on, a point below it warns; no rule produces it
    eStatus_OffChildWarning = 22,          ///< switched off, a point below it warns; an alarm to its parent
    eStatus_ChildAlarm = 23,               ///< a point below it alarms
    eStatus_ChildWarning = 24,             ///< a point below it warns
    eStatus_LostChild = 25,                ///< a point below it is lost
    eStatus_FixInternalHighAlarm = 26,     ///< above the upper alarm limit that the device itself sets
    eStatus_FixInternalHighWarning = 27,   ///< above the upper warning limit that the device itself sets
    eStatus_FixInternalLowWarning = 28,    ///< below the lower warning limit that the device itself sets
    eStatus_FixInternalLowAlarm = 29,      ///< below the lower alarm limit that the device itself sets
    eStatus_HighUserAndInternalError = 30, ///< above the alarm limits of user and device
    eStatus_HighUserErrorInternalWarning = 31, ///< above the user's alarm limit, the device's warning limit
    eStatus_HighUserWarningInternalError = 32, ///< above the user's warning limit, the device's alarm limit
    eStatus_HighUserAndInternalWarning = 33,   ///< above the warning limits of user and device
    eStatus_DeviceIsUpdating = 34,             ///< an update of the device is under way
    eStatus_DeviceUpdateError = 35,            ///< an update of the device has failed
    eStatus_OngoingSwitchOn = 36,              ///< being switched on
    eStatus_High = 37,                         ///< an input or output is high
    eStatus_Low = 38,                          ///< an input or output is low
    eStatus_Alarm = 39,                        ///< an alarm; what a switched-off circuit is to its parent
    eStatus_Warning = 40,                      ///< a warning
    eStatus_OK = 41,                           ///< all well
    eStatus_Disabled = 42,                     ///< an input or output that is not in use
    eStatus_SlaveVersionTooNew = 43,           ///< the software of a slave is newer than that of its master
};
