/// @file
/// The rules of state combination, one state at a time.
#pragma once

#include "domain/eStatus_Bits.h"

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
        if (value == eStatus_ExpectedValue || value == eStatus_UndefinedValue) {
            return true;
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

/// The new state of a point, see QelSharedMemoryStates::mpState().
/// @param initial  the point's own part, see QelSharedMemoryStates::mpInitial()
/// @param values   the folded states of its values
/// @param children the folded reported states of its children
eStatus_Bits combineStates(eStatus_Bits initial, eStatus_Bits values, eStatus_Bits children);

} // namespace shm
