// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateClass.h"

#include "region/TableLookup.h"

#include <array>
#include <cmath>

namespace qel::inspect {

namespace {

struct ClassRow {
    eStatus_Bits code;
    StateClass kind;
};

constexpr std::array<ClassRow, 46> classes{{
    {eStatus_ExpectedValue, StateClass::NoValue},
    {eStatus_UndefinedValue, StateClass::NoValue},
    {eStatus_NoError, StateClass::Plain},
    {eStatus_HighAlarm, StateClass::Alarm},
    {eStatus_LowAlarm, StateClass::Alarm},
    {eStatus_HighWarning, StateClass::Warning},
    {eStatus_LowWarning, StateClass::Warning},
    {eStatus_Lost, StateClass::Alarm},
    {eStatus_Deactivated, StateClass::Out},
    {eStatus_OnAlarmIdentify, StateClass::Alarm},
    {eStatus_OffAlarmIdentify, StateClass::Alarm},
    {eStatus_OnAlarm, StateClass::Alarm},
    {eStatus_OffAlarm, StateClass::Alarm},
    {eStatus_OnWarningIdentify, StateClass::Warning},
    {eStatus_OffWarningIdentify, StateClass::Warning},
    {eStatus_OnWarning, StateClass::Warning},
    {eStatus_OffWarning, StateClass::Warning},
    {eStatus_OnIdentify, StateClass::Identify},
    {eStatus_OffIdentify, StateClass::Out},
    {eStatus_On, StateClass::Good},
    {eStatus_Off, StateClass::Out},
    {eStatus_OnChildAlarm, StateClass::Alarm},
    {eStatus_OffChildAlarm, StateClass::Alarm},
    {eStatus_OnChildWarning, StateClass::Warning},
    {eStatus_OffChildWarning, StateClass::Warning},
    {eStatus_ChildAlarm, StateClass::Alarm},
    {eStatus_ChildWarning, StateClass::Warning},
    {eStatus_LostChild, StateClass::Alarm},
    {eStatus_FixInternalHighAlarm, StateClass::Alarm},
    {eStatus_FixInternalHighWarning, StateClass::Warning},
    {eStatus_FixInternalLowWarning, StateClass::Warning},
    {eStatus_FixInternalLowAlarm, StateClass::Alarm},
    {eStatus_HighUserAndInternalError, StateClass::Alarm},
    {eStatus_HighUserErrorInternalWarning, StateClass::Alarm},
    {eStatus_HighUserWarningInternalError, StateClass::Alarm},
    {eStatus_HighUserAndInternalWarning, StateClass::Warning},
    {eStatus_DeviceIsUpdating, StateClass::Busy},
    {eStatus_DeviceUpdateError, StateClass::Alarm},
    {eStatus_OngoingSwitchOn, StateClass::Busy},
    {eStatus_High, StateClass::Plain},
    {eStatus_Low, StateClass::Plain},
    {eStatus_Alarm, StateClass::Alarm},
    {eStatus_Warning, StateClass::Warning},
    {eStatus_OK, StateClass::Good},
    {eStatus_Disabled, StateClass::Out},
    {eStatus_SlaveVersionTooNew, StateClass::Warning},
}};
static_assert(shm::coversCodes(classes, eStatus_ExpectedValue, eStatus_SlaveVersionTooNew));

} // namespace

StateClass classOf(eStatus_Bits state) {
    auto const* const row = shm::findRow(classes, state);
    return row != nullptr ? row->kind : StateClass::NoState;
}

bool hasNumber(eStatus_Bits state) {
    auto const kind = classOf(state);
    return kind != StateClass::NoState && kind != StateClass::NoValue;
}

std::optional<double> numberIn(eStatus_Bits state, double number) {
    return hasNumber(state) && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace qel::inspect
