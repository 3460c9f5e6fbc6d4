#include "states/QelSharedMemoryStates.h"

#include "states/StateRules.h"

namespace shm {

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
    ValueFold fold;
    for (auto const value : values) {
        if (!fold.add(value)) {
            break;
        }
    }
    return fold.result();
}

eStatus_Bits QelSharedMemoryStates::mpState(std::list<eStatus_Bits> const& children) const {
    ChildFold fold;
    for (auto const child : children) {
        fold.add(child);
    }
    return fold.result();
}

// Deliberate: not const, as programs already compiled call it.
// NOLINTNEXTLINE(readability-make-member-function-const): its constness is part of the binary contract.
eStatus_Bits QelSharedMemoryStates::mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                                            std::list<eStatus_Bits> const& children) {
    return combineStates(mpInitial(own), mvState(values), mpState(children));
}

} // namespace shm
