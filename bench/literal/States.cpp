// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/literal/States.h"

#include <unordered_set>

namespace bench::literal {

namespace {

using States = std::unordered_set<int>;

// Filled once when the program starts.
States const valueAlarms{1, 2, 9, 10, 39};
States const valueWarnings{3, 4, 13, 14, 40};
States const childAlarms{5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 39};
States const childWarnings{11, 12, 13, 14, 21, 24, 40};
States const ownAlarms{5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 35, 39};

bool has(States const& states, eStatus_Bits state) {
    return states.find(state) != states.end();
}

} // namespace

eStatus_Bits mpInitial(eStatus_Bits state) {
    switch (static_cast<int>(state)) {
    case -2:
    case 5:
    case 6:
    case 34:
    case 35:
    case 36:
    case 43:
        return state;
    case 7:
    case 11:
    case 15:
        return eStatus_OnIdentify;
    case 8:
    case 12:
    case 16:
        return eStatus_OffIdentify;
    case 10:
    case 14:
    case 18:
    case 20:
    case 22:
        return eStatus_Off;
    default:
        return eStatus_On;
    }
}

eStatus_Bits mvState(std::list<eStatus_Bits> const& values) {
    auto result = eStatus_UndefinedValue;
    for (auto const value : values) {
        if (value == eStatus_ExpectedValue || value == eStatus_UndefinedValue) {
            continue;
        }
        if (has(valueAlarms, value)) {
            return value;
        }
        if (has(valueWarnings, value) || !has(valueWarnings, result)) {
            result = value;
        }
    }
    return result;
}

eStatus_Bits mpState(std::list<eStatus_Bits> const& children) {
    auto result = eStatus_UndefinedValue;
    for (auto const child : children) {
        if (child == eStatus_ExpectedValue || child == eStatus_UndefinedValue) {
            continue;
        }
        if (child == eStatus_DeviceIsUpdating || child == eStatus_DeviceUpdateError) {
            return child;
        }
        if (has(childAlarms, child) || (has(childWarnings, child) && !has(ownAlarms, result))) {
            result = child;
        }
    }
    return result;
}

namespace {

/// The point's own state with the alarm or warning of its values.
eStatus_Bits withValues(eStatus_Bits own, eStatus_Bits values) {
    bool const alarm = has(valueAlarms, values);
    if (!alarm && !has(valueWarnings, values)) {
        return own;
    }
    switch (own) {
    case eStatus_OnIdentify:
        return alarm ? eStatus_OnAlarmIdentify : eStatus_OnWarningIdentify;
    case eStatus_OffIdentify:
        return alarm ? eStatus_OffAlarmIdentify : eStatus_OffWarningIdentify;
    case eStatus_On:
        return alarm ? eStatus_OnAlarm : eStatus_OnWarning;
    case eStatus_Off:
        return alarm ? eStatus_OffAlarm : eStatus_OffWarning;
    default:
        return own;
    }
}

} // namespace

eStatus_Bits mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                     std::list<eStatus_Bits> const& children) {
    auto state = mpInitial(own);
    switch (static_cast<int>(state)) {
    case -2:
    case -1:
    case 5:
    case 6:
    case 34:
    case 36:
    case 43:
        return state;
    default:
        break;
    }
    state = withValues(state, mvState(values));
    auto const child = mpState(children);
    if (child == eStatus_DeviceIsUpdating || child == eStatus_DeviceUpdateError) {
        return child;
    }
    if (has(ownAlarms, state)) {
        return state;
    }
    if (has(childAlarms, child)) {
        return state == eStatus_Off ? eStatus_OffChildAlarm : eStatus_ChildAlarm;
    }
    bool const plain = state == eStatus_OnIdentify || state == eStatus_OffIdentify || state == eStatus_On ||
                       state == eStatus_Off || state == eStatus_UndefinedValue;
    if (plain && has(childWarnings, child)) {
        return state == eStatus_Off ? eStatus_OffChildWarning : eStatus_ChildWarning;
    }
    return state;
}

} // namespace bench::literal
