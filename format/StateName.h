// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The table of the states' names.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/TableLookup.h"

#include <array>
#include <string_view>

namespace shm {

/// All states, in ascending order.
inline constexpr std::array<TextRow<eStatus_Bits>, 46> stateTable{{
    {eStatus_ExpectedValue, "Expected Value"},
    {eStatus_UndefinedValue, "Undefined Value"},
    {eStatus_NoError, "No Error"},
    {eStatus_HighAlarm, "High Alarm"},
    {eStatus_LowAlarm, "Low Alarm"},
    {eStatus_HighWarning, "High Warning"},
    {eStatus_LowWarning, "Low Warning"},
    {eStatus_Lost, "Lost"},
    {eStatus_Deactivated, "Deactivated"},
    {eStatus_OnAlarmIdentify, "On, Alarm, Identify"},
    {eStatus_OffAlarmIdentify, "Off, Alarm, Identify"},
    {eStatus_OnAlarm, "On, Alarm"},
    {eStatus_OffAlarm, "Off, Alarm"},
    {eStatus_OnWarningIdentify, "On, Warning, Identify"},
    {eStatus_OffWarningIdentify, "Off, Warning, Identify"},
    {eStatus_OnWarning, "On, Warning"},
    {eStatus_OffWarning, "Off, Warning"},
    {eStatus_OnIdentify, "On, Identify"},
    {eStatus_OffIdentify, "Off, Identify"},
    {eStatus_On, "On"},
    {eStatus_Off, "Off"},
    {eStatus_OnChildAlarm, "On, Child Alarm"},
    {eStatus_OffChildAlarm, "Off, Child Alarm"},
    {eStatus_OnChildWarning, "On, Child Warning"},
    {eStatus_OffChildWarning, "Off, Child Warning"},
    {eStatus_ChildAlarm, "Child Alarm"},
    {eStatus_ChildWarning, "Child Warning"},
    {eStatus_LostChild, "Lost Child"},
    {eStatus_FixInternalHighAlarm, "Fix Internal High Alarm"},
    {eStatus_FixInternalHighWarning, "Fix Internal High Warning"},
    {eStatus_FixInternalLowWarning, "Fix Internal Low Warning"},
    {eStatus_FixInternalLowAlarm, "Fix Internal Low Alarm"},
    {eStatus_HighUserAndInternalError, "High User and Internal Error"},
    {eStatus_HighUserErrorInternalWarning, "High User Error, Internal Warning"},
    {eStatus_HighUserWarningInternalError, "High User Warning, Internal Error"},
    {eStatus_HighUserAndInternalWarning, "High User and Internal Warning"},
    {eStatus_DeviceIsUpdating, "Device is updating"},
    {eStatus_DeviceUpdateError, "Device Update Error"},
    {eStatus_OngoingSwitchOn, "Ongoing switch on"},
    {eStatus_High, "High"},
    {eStatus_Low, "Low"},
    {eStatus_Alarm, "Alarm"},
    {eStatus_Warning, "Warning"},
    {eStatus_OK, "OK"},
    {eStatus_Disabled, "Disabled"},
    {eStatus_SlaveVersionTooNew,
     "Slave version to new"}, // Deliberate: the spelling is part of the system's wording.
}};
static_assert(coversCodes(stateTable, -2, 43));

/// Name of a state, "UNKNOWN STATE" for a number that is none.
///
/// Threads: reentrant.
constexpr std::string_view stateName(eStatus_Bits state) {
    return textOf(stateTable, state, "UNKNOWN STATE");
}

} // namespace shm
