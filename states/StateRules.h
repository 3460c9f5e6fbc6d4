// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules that combine states, one state at a time.
///
/// Threads: reentrant. Everything here is constant or a pure function, except the folds, which are plain objects.
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
    /// @param states numbers from 0 to 63
    constexpr StateSet(std::initializer_list<eStatus_Bits> states) {
        for (auto const state : states) {
            bits_ |= std::uint64_t{1} << static_cast<unsigned>(state);
        }
    }

    /// @param state any number
    /// @return whether the set holds it
    constexpr bool has(eStatus_Bits state) const {
        auto const number = static_cast<std::uint32_t>(state);
        return number < 64U && (bits_ >> number & 1U) != 0;
    }

private:
    std::uint64_t bits_ = 0;
};

/// States of a value that alarm its point.
inline constexpr StateSet valueAlarms{eStatus_HighAlarm, eStatus_LowAlarm, eStatus_OnAlarm, eStatus_OffAlarm,
                                      eStatus_Alarm};

/// States of a value that warn its point.
inline constexpr StateSet valueWarnings{eStatus_HighWarning, eStatus_LowWarning, eStatus_OnWarning,
                                        eStatus_OffWarning, eStatus_Warning};

/// Reported states of a child that alarm its parent.
// Deliberate: "Off, Child Warning" is an alarm of a child, "On, Child Warning" is a warning. So the warning below a
// switched-off point counts as an alarm above it.
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

/// Reported states of a child that warn its parent.
inline constexpr StateSet childWarnings{
    eStatus_OnWarningIdentify, eStatus_OffWarningIdentify, eStatus_OnWarning, eStatus_OffWarning,
    eStatus_OnChildWarning,    eStatus_ChildWarning,       eStatus_Warning};

/// Reported states of a child that replace its parent's state.
inline constexpr StateSet deviceUpdates{eStatus_DeviceIsUpdating, eStatus_DeviceUpdateError};

/// States of a point that no alarm or warning of a child changes: the alarms of a child, and a failed update.
inline constexpr StateSet ownAlarms{
    eStatus_Lost,       eStatus_OnAlarmIdentify, eStatus_OffAlarmIdentify,  eStatus_OnAlarm,
    eStatus_OffAlarm,   eStatus_OnChildAlarm,    eStatus_OffChildAlarm,     eStatus_OffChildWarning,
    eStatus_ChildAlarm, eStatus_LostChild,       eStatus_DeviceUpdateError, eStatus_Alarm};

/// Folds the states of a point's values, one by one.
class ValueFold {
public:
    /// @param value state of the next value
    /// @return false when no further state can change the result
    constexpr bool add(eStatus_Bits value) {
        if (value == result_ || value == eStatus_ExpectedValue || value == eStatus_UndefinedValue) {
            return true; // most values have the state of the value before
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

/// Folds the reported states of a point's children, one by one.
class ChildFold {
public:
    /// @param child reported state of the next child
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

/// The rule of QelSharedMemoryStates::mpInitial().
/// @param state a point's stored state
/// @return the point's own part of it
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

/// Own parts that no value or child changes, besides "Expected Value".
// Deliberate: "Device Update Error" is not among them, so a child that updates replaces it.
inline constexpr StateSet untouchable{eStatus_Lost, eStatus_Deactivated, eStatus_DeviceIsUpdating,
                                      eStatus_OngoingSwitchOn, eStatus_SlaveVersionTooNew};

/// @param state a point's own part
/// @return whether no value or child changes it
constexpr bool isUntouchable(eStatus_Bits state) {
    return state == eStatus_ExpectedValue || untouchable.has(state);
}

/// What a plain state becomes when a value alarms or warns.
struct Escalation {
    eStatus_Bits code;    ///< the plain state
    eStatus_Bits alarm;   ///< with an alarm
    eStatus_Bits warning; ///< with a warning
};

/// All plain states: On and Off, with and without Identify.
inline constexpr std::array<Escalation, 4> escalations{
    {{eStatus_OnIdentify, eStatus_OnAlarmIdentify, eStatus_OnWarningIdentify},
     {eStatus_OffIdentify, eStatus_OffAlarmIdentify, eStatus_OffWarningIdentify},
     {eStatus_On, eStatus_OnAlarm, eStatus_OnWarning},
     {eStatus_Off, eStatus_OffAlarm, eStatus_OffWarning}}};
static_assert(coversCodes(escalations, eStatus_OnIdentify, eStatus_Off));

/// @param state any state
/// @return whether it is On or Off, with or without Identify, and nothing else
constexpr bool isPlain(eStatus_Bits state) {
    return state >= eStatus_OnIdentify && state <= eStatus_Off;
}

/// Adds an alarm or a warning of the values to a plain state.
/// @param state  of the point; returned unchanged when it is not plain
/// @param values the folded states of its values
/// @return the state
constexpr eStatus_Bits escalate(eStatus_Bits state, eStatus_Bits values) {
    bool const alarms = valueAlarms.has(values);
    if (!isPlain(state) || !(alarms || valueWarnings.has(values))) {
        return state;
    }
    auto const& escalation = escalations[static_cast<std::size_t>(state - eStatus_OnIdentify)];
    return alarms ? escalation.alarm : escalation.warning;
}

/// The rule of QelSharedMemoryStates::mpState().
/// @param initial  the point's own part, see ownPart()
/// @param values   the folded states of its values
/// @param children the folded reported states of its children
/// @return the point's new state
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
    // Deliberate: only a plain "Off" keeps its Off when a child alarms or warns. Every other state becomes "Child
    // Alarm" or "Child Warning" and loses On, Off and Identify. "On, Child Alarm" and "On, Child Warning" never
    // result.
    bool const off = withValues == eStatus_Off;
    if (childAlarms.has(children)) {
        return off ? eStatus_OffChildAlarm : eStatus_ChildAlarm;
    }
    if (isPlain(withValues) && childWarnings.has(children)) {
        return off ? eStatus_OffChildWarning : eStatus_ChildWarning;
    }
    return withValues;
}

/// @param svid of a point
/// @return whether it names a circuit, not one of its sockets
inline bool isCircuit(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    return parts[SensorIdentifier::Kind] == SensorType::Electrical &&
           parts[SensorIdentifier::Circuit] != -1 && parts[SensorIdentifier::Socket] == -1;
}

/// What a point reports to its parent.
/// @param svid  of the point
/// @param state of the point
/// @return the state, or Alarm for a circuit that is off
// Deliberate: a circuit that is switched off counts as an alarm for its parent, while it shows "Off" itself.
inline eStatus_Bits reportedState(long long svid, eStatus_Bits state) {
    return state == eStatus_Off && isCircuit(svid) ? eStatus_Alarm : state;
}

} // namespace shm
