#include "states/QelSharedMemoryStates.h"

#include "region/TableLookup.h"

#include <array>
#include <cstdint>
#include <initializer_list>

namespace shm {

namespace {

/// A fixed set of states from 0 to 63.
class StateSet {
public:
    constexpr StateSet(std::initializer_list<eStatus_Bits> states) {
        for (auto const state : states) {
            bits_ |= std::uint64_t{1} << static_cast<unsigned>(state);
        }
    }

    constexpr bool has(eStatus_Bits state) const {
        return state >= 0 && state < 64 && (bits_ >> static_cast<unsigned>(state) & 1U) != 0;
    }

private:
    std::uint64_t bits_ = 0;
};

constexpr StateSet valueAlarms{eStatus_HighAlarm, eStatus_LowAlarm, eStatus_OnAlarm, eStatus_OffAlarm,
                               eStatus_Alarm};

constexpr StateSet valueWarnings{eStatus_HighWarning, eStatus_LowWarning, eStatus_OnWarning,
                                 eStatus_OffWarning, eStatus_Warning};

// Deliberate: "Off, Child Warning" is an alarm of a child, "On, Child Warning" is a warning. A switched-off
// point whose own child warns is reported upward with the weight of an alarm.
constexpr StateSet childAlarms{eStatus_Lost,
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

constexpr StateSet childWarnings{
    eStatus_OnWarningIdentify, eStatus_OffWarningIdentify, eStatus_OnWarning, eStatus_OffWarning,
    eStatus_OnChildWarning,    eStatus_ChildWarning,       eStatus_Warning};

constexpr StateSet deviceUpdates{eStatus_DeviceIsUpdating, eStatus_DeviceUpdateError};

// What no alarm or warning of a child changes: the alarms of a child, and a failed update.
constexpr StateSet ownAlarms{eStatus_Lost,          eStatus_OnAlarmIdentify,   eStatus_OffAlarmIdentify,
                             eStatus_OnAlarm,       eStatus_OffAlarm,          eStatus_OnChildAlarm,
                             eStatus_OffChildAlarm, eStatus_OffChildWarning,   eStatus_ChildAlarm,
                             eStatus_LostChild,     eStatus_DeviceUpdateError, eStatus_Alarm};

// Deliberate: "Device Update Error" is not among them, so a child that updates replaces it.
constexpr StateSet untouchable{eStatus_Lost, eStatus_Deactivated, eStatus_DeviceIsUpdating,
                               eStatus_OngoingSwitchOn, eStatus_SlaveVersionTooNew};

constexpr bool isUntouchable(eStatus_Bits state) {
    return state == eStatus_ExpectedValue || untouchable.has(state);
}

constexpr bool isUnknown(eStatus_Bits state) {
    return state == eStatus_ExpectedValue || state == eStatus_UndefinedValue;
}

/// What a point's plain state becomes when one of its values alarms or warns.
struct Escalation {
    eStatus_Bits code;
    eStatus_Bits alarm;
    eStatus_Bits warning;
};

constexpr std::array<Escalation, 4> escalations{
    {{eStatus_OnIdentify, eStatus_OnAlarmIdentify, eStatus_OnWarningIdentify},
     {eStatus_OffIdentify, eStatus_OffAlarmIdentify, eStatus_OffWarningIdentify},
     {eStatus_On, eStatus_OnAlarm, eStatus_OnWarning},
     {eStatus_Off, eStatus_OffAlarm, eStatus_OffWarning}}};
static_assert(coversCodes(escalations, eStatus_OnIdentify, eStatus_Off));

eStatus_Bits escalate(eStatus_Bits plain, eStatus_Bits values) {
    auto const* const escalation = findRow(escalations, plain);
    if (escalation == nullptr) {
        return plain;
    }
    if (valueAlarms.has(values)) {
        return escalation->alarm;
    }
    return valueWarnings.has(values) ? escalation->warning : plain;
}

} // namespace

QelSharedMemoryStates::~QelSharedMemoryStates() = default;

eStatus_Bits QelSharedMemoryStates::mpInitial(eStatus_Bits state) const {
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

eStatus_Bits QelSharedMemoryStates::mvState(std::list<eStatus_Bits> const& values) const {
    auto result = eStatus_UndefinedValue;
    for (auto const value : values) {
        if (isUnknown(value)) {
            continue;
        }
        // Deliberate: the first alarm wins, but the last warning.
        if (valueAlarms.has(value)) {
            return value;
        }
        if (valueWarnings.has(value) || !valueWarnings.has(result)) {
            result = value;
        }
    }
    return result;
}

eStatus_Bits QelSharedMemoryStates::mpState(std::list<eStatus_Bits> const& children) const {
    auto result = eStatus_UndefinedValue;
    for (auto const child : children) {
        if (deviceUpdates.has(child)) {
            return child;
        }
        // Deliberate: the last alarm wins, unlike among values.
        if (childAlarms.has(child) || (childWarnings.has(child) && !ownAlarms.has(result))) {
            result = child;
        }
    }
    return result;
}

// Deliberate: not const, as programs already compiled call it.
// NOLINTNEXTLINE(readability-make-member-function-const): its constness is part of the binary contract.
eStatus_Bits QelSharedMemoryStates::mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                                            std::list<eStatus_Bits> const& children) {
    auto const initial = mpInitial(own);
    if (isUntouchable(initial)) {
        return initial;
    }
    auto const withValues = escalate(initial, mvState(values));
    auto const child = mpState(children);
    if (deviceUpdates.has(child)) {
        return child;
    }
    if (ownAlarms.has(withValues)) {
        return withValues;
    }
    // Deliberate: only a plain "Off" keeps its Off beside a troubled child. Every other state becomes the
    // bare "Child Alarm" or "Child Warning" and loses On, Off and Identify; "On, Child Alarm" and "On, Child
    // Warning" never come out.
    bool const off = withValues == eStatus_Off;
    if (childAlarms.has(child)) {
        return off ? eStatus_OffChildAlarm : eStatus_ChildAlarm;
    }
    bool const plain = findRow(escalations, withValues) != nullptr;
    if (plain && childWarnings.has(child)) {
        return off ? eStatus_OffChildWarning : eStatus_ChildWarning;
    }
    return withValues;
}

} // namespace shm
