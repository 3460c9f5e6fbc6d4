// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules of state combination, one state at a time.
#pragma once

#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"
#include "domain/eStatus_Bits.h"
#include "region/TableLookup.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace shm {

/// A fixed set of states from 0 to 63.
class StateSet {
public:
    constexpr StateSet(std::initializer_list<eStatus_Bits> states) {
        for (auto const state : states) {
            bits_ |= std::uint64_t{1} << static_cast<unsigned>(state);
        }
    }

    constexpr bool has(eStatus_Bits state) const {
        auto const number = static_cast<std::uint32_t>(state);
        return number < 64U && (bits_ >> number & 1U) != 0;
    }

private:
    std::uint64_t bits_ = 0;
};

inline constexpr StateSet valueAlarms{eStatus_HighAlarm, eStatus_LowAlarm, eStatus_OnAlarm, eStatus_OffAlarm,
                                      eStatus_Alarm};

inline constexpr StateSet valueWarnings{eStatus_HighWarning, eStatus_LowWarning, eStatus_OnWarning,
                                        eStatus_OffWarning, eStatus_Warning};

// Deliberate: "Off, Child Warning" is an alarm of a child, "On, Child Warning" is a warning. A switched-off
// point whose own child warns is reported upward with the weight of an alarm.
inline constexpr StateSet childAlarms{eStatus_Lost,
                                      eStatus_OnAlarmIdentify,
                                      eStatus_OffAlarmIdentify,
                                      eStatus_OnAlarm,
                                      eStatus_OffAlarm,
                                      eStatus_OnChildAlarm,
                                      eStatus_OffChildAlarm,
                                      eStatus_OffChildWarning,
                                      eStatus_ChildAlarm,
                                      eStatus_LostChild,
                                      eStatus_Alarm};

inline constexpr StateSet childWarnings{
    eStatus_OnWarningIdentify, eStatus_OffWarningIdentify, eStatus_OnWarning, eStatus_OffWarning,
    eStatus_OnChildWarning,    eStatus_ChildWarning,       eStatus_Warning};

inline constexpr StateSet deviceUpdates{eStatus_DeviceIsUpdating, eStatus_DeviceUpdateError};

// What no alarm or warning of a child changes: the alarms of a child, and a failed update.
inline constexpr StateSet ownAlarms{
    eStatus_Lost,       eStatus_OnAlarmIdentify, eStatus_OffAlarmIdentify,  eStatus_OnAlarm,
    eStatus_OffAlarm,   eStatus_OnChildAlarm,    eStatus_OffChildAlarm,     eStatus_OffChildWarning,
    eStatus_ChildAlarm, eStatus_LostChild,       eStatus_DeviceUpdateError, eStatus_Alarm};

/// Folds the states of a point's values, handed over one by one.
class ValueFold {
public:
    /// @return false when no further state can change the result
    constexpr bool add(eStatus_Bits value) {
        if (value == result_ || value == eStatus_ExpectedValue || value == eStatus_UndefinedValue) {
            return true; // most values are in the state of the one before
        }
        // Deliberate: the first alarm wins, but the last warning.
        if (valueAlarms.has(value)) {
            result_ = value;
            return false;
        }
        if (valueWarnings.has(value) || !valueWarnings.has(result_)) {
            result_ = value;
        }
        return true;
    }

    constexpr eStatus_Bits result() const { return result_; }

private:
    eStatus_Bits result_ = eStatus_UndefinedValue;
};

/// Folds the reported states of a point's children, handed over one by one.
class ChildFold {
public:
    constexpr void add(eStatus_Bits child) {
        if (deviceUpdates.has(result_)) {
            return; // the first one wins
        }
        // Deliberate: the last alarm wins, unlike among values.
        if (deviceUpdates.has(child) || childAlarms.has(child) ||
            (childWarnings.has(child) && !ownAlarms.has(result_))) {
            result_ = child;
        }
    }

    constexpr eStatus_Bits result() const { return result_; }

private:
    eStatus_Bits result_ = eStatus_UndefinedValue;
};

/// A point's own part of its state, see QelSharedMemoryStates::mpInitial().
constexpr eStatus_Bits ownPart(eStatus_Bits state) {
    switch (state) {
    case eStatus_ExpectedValue:
    case eStatus_Lost:
    case eStatus_Deactivated:
    case eStatus_DeviceIsUpdating:
    case eStatus_DeviceUpdateError:
    case eStatus_OngoingSwitchOn:
    case eStatus_SlaveVersionTooNew:
        return state;
    case eStatus_OnAlarmIdentify:
    case eStatus_OnWarningIdentify:
    case eStatus_OnIdentify:
        return eStatus_OnIdentify;
    case eStatus_OffAlarmIdentify:
    case eStatus_OffWarningIdentify:
    case eStatus_OffIdentify:
        return eStatus_OffIdentify;
    case eStatus_OffAlarm:
    case eStatus_OffWarning:
    case eStatus_Off:
    case eStatus_OffChildAlarm:
    case eStatus_OffChildWarning:
        return eStatus_Off;
    default:
        // Deliberate: an undefined state, and child states that carry neither On nor Off, count as On.
        return eStatus_On;
    }
}

// Deliberate: "Device Update Error" is not among them, so a child that updates replaces it.
inline constexpr StateSet untouchable{eStatus_Lost, eStatus_Deactivated, eStatus_DeviceIsUpdating,
                                      eStatus_OngoingSwitchOn, eStatus_SlaveVersionTooNew};

constexpr bool isUntouchable(eStatus_Bits state) {
    return state == eStatus_ExpectedValue || untouchable.has(state);
}

/// What a point's plain state becomes when one of its values alarms or warns.
struct Escalation {
    eStatus_Bits code;
    eStatus_Bits alarm;
    eStatus_Bits warning;
};

inline constexpr std::array<Escalation, 4> escalations{
    {{eStatus_OnIdentify, eStatus_OnAlarmIdentify, eStatus_OnWarningIdentify},
     {eStatus_OffIdentify, eStatus_OffAlarmIdentify, eStatus_OffWarningIdentify},
     {eStatus_On, eStatus_OnAlarm, eStatus_OnWarning},
     {eStatus_Off, eStatus_OffAlarm, eStatus_OffWarning}}};
static_assert(coversCodes(escalations, eStatus_OnIdentify, eStatus_Off));

constexpr bool isPlain(eStatus_Bits state) {
    return state >= eStatus_OnIdentify && state <= eStatus_Off;
}

constexpr eStatus_Bits escalate(eStatus_Bits state, eStatus_Bits values) {
    bool const alarms = valueAlarms.has(values);
    if (!isPlain(state) || !(alarms || valueWarnings.has(values))) {
        return state;
    }
    auto const& escalation = escalations[static_cast<std::size_t>(state - eStatus_OnIdentify)];
    return alarms ? escalation.alarm : escalation.warning;
}

/// The new state of a point, see QelSharedMemoryStates::mpState().
/// @param initial  the point's own part, see ownPart()
/// @param values   the folded states of its values
/// @param children the folded reported states of its children
constexpr eStatus_Bits combineStates(eStatus_Bits initial, eStatus_Bits values, eStatus_Bits children) {
    if (isUntouchable(initial)) {
        return initial;
    }
    auto const withValues = escalate(initial, values);
    if (deviceUpdates.has(children)) {
        return children;
    }
    if (ownAlarms.has(withValues)) {
        return withValues;
    }
    // Deliberate: only a plain "Off" keeps its Off beside a troubled child. Every other state becomes the
    // bare "Child Alarm" or "Child Warning" and loses On, Off and Identify; "On, Child Alarm" and "On, Child
    // Warning" never come out.
    bool const off = withValues == eStatus_Off;
    if (childAlarms.has(children)) {
        return off ? eStatus_OffChildAlarm : eStatus_ChildAlarm;
    }
    if (isPlain(withValues) && childWarnings.has(children)) {
        return off ? eStatus_OffChildWarning : eStatus_ChildWarning;
    }
    return withValues;
}

/// Whether a sensor id names a circuit itself, not one of its sockets.
inline bool isCircuit(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    return parts[SensorIdentifier::Kind] == SensorType::Electrical &&
           parts[SensorIdentifier::Circuit] != -1 && parts[SensorIdentifier::Socket] == -1;
}

/// What a point of this id and state counts as for its parent.
/// Deliberate: a circuit that is switched off stands for an alarm above it, while it shows "Off" itself.
inline eStatus_Bits reportedState(long long svid, eStatus_Bits state) {
    return state == eStatus_Off && isCircuit(svid) ? eStatus_Alarm : state;
}

} // namespace shm
