#include "states/StateRules.h"

#include "region/TableLookup.h"

#include <array>
#include <cstddef>

namespace shm {

namespace {

// Deliberate: "Device Update Error" is not among them, so a child that updates replaces it.
constexpr StateSet untouchable{eStatus_Lost, eStatus_Deactivated, eStatus_DeviceIsUpdating,
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

constexpr std::array<Escalation, 4> escalations{
    {{eStatus_OnIdentify, eStatus_OnAlarmIdentify, eStatus_OnWarningIdentify},
     {eStatus_OffIdentify, eStatus_OffAlarmIdentify, eStatus_OffWarningIdentify},
     {eStatus_On, eStatus_OnAlarm, eStatus_OnWarning},
     {eStatus_Off, eStatus_OffAlarm, eStatus_OffWarning}}};
static_assert(coversCodes(escalations, eStatus_OnIdentify, eStatus_Off));

constexpr bool isPlain(eStatus_Bits state) {
    return state >= eStatus_OnIdentify && state <= eStatus_Off;
}

eStatus_Bits escalate(eStatus_Bits state, eStatus_Bits values) {
    bool const alarms = valueAlarms.has(values);
    if (!isPlain(state) || !(alarms || valueWarnings.has(values))) {
        return state;
    }
    auto const& escalation = escalations[static_cast<std::size_t>(state - eStatus_OnIdentify)];
    return alarms ? escalation.alarm : escalation.warning;
}

} // namespace

eStatus_Bits combineStates(eStatus_Bits initial, eStatus_Bits values, eStatus_Bits children) {
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

} // namespace shm
