#include "tools/watch/StateInfo.h"

#include "tools/watch/Text.h"

#include "inspect/StateText.h"
#include "region/TableLookup.h"

#include <array>
#include <cstddef>

namespace qel::watch {

namespace {

struct SeverityRow {
    eStatus_Bits code;
    Severity severity;
};

constexpr std::array<SeverityRow, 46> severities{{
    {eStatus_ExpectedValue, Severity::None},
    {eStatus_UndefinedValue, Severity::None},
    {eStatus_NoError, Severity::Normal},
    {eStatus_HighAlarm, Severity::Alarm},
    {eStatus_LowAlarm, Severity::Alarm},
    {eStatus_HighWarning, Severity::Warning},
    {eStatus_LowWarning, Severity::Warning},
    {eStatus_Lost, Severity::Alarm},
    {eStatus_Deactivated, Severity::Notice},
    {eStatus_OnAlarmIdentify, Severity::Alarm},
    {eStatus_OffAlarmIdentify, Severity::Alarm},
    {eStatus_OnAlarm, Severity::Alarm},
    {eStatus_OffAlarm, Severity::Alarm},
    {eStatus_OnWarningIdentify, Severity::Warning},
    {eStatus_OffWarningIdentify, Severity::Warning},
    {eStatus_OnWarning, Severity::Warning},
    {eStatus_OffWarning, Severity::Warning},
    {eStatus_OnIdentify, Severity::Notice},
    {eStatus_OffIdentify, Severity::Notice},
    {eStatus_On, Severity::Normal},
    {eStatus_Off, Severity::Notice},
    {eStatus_OnChildAlarm, Severity::Alarm},
    {eStatus_OffChildAlarm, Severity::Alarm},
    {eStatus_OnChildWarning, Severity::Warning},
    {eStatus_OffChildWarning, Severity::Warning},
    {eStatus_ChildAlarm, Severity::Alarm},
    {eStatus_ChildWarning, Severity::Warning},
    {eStatus_LostChild, Severity::Alarm},
    {eStatus_FixInternalHighAlarm, Severity::Alarm},
    {eStatus_FixInternalHighWarning, Severity::Warning},
    {eStatus_FixInternalLowWarning, Severity::Warning},
    {eStatus_FixInternalLowAlarm, Severity::Alarm},
    {eStatus_HighUserAndInternalError, Severity::Alarm},
    {eStatus_HighUserErrorInternalWarning, Severity::Alarm},
    {eStatus_HighUserWarningInternalError, Severity::Alarm},
    {eStatus_HighUserAndInternalWarning, Severity::Warning},
    {eStatus_DeviceIsUpdating, Severity::Notice},
    {eStatus_DeviceUpdateError, Severity::Alarm},
    {eStatus_OngoingSwitchOn, Severity::Notice},
    {eStatus_High, Severity::Normal},
    {eStatus_Low, Severity::Normal},
    {eStatus_Alarm, Severity::Alarm},
    {eStatus_Warning, Severity::Warning},
    {eStatus_OK, Severity::Normal},
    {eStatus_Disabled, Severity::Notice},
    {eStatus_SlaveVersionTooNew, Severity::Warning},
}};
static_assert(shm::coversCodes(severities, eStatus_ExpectedValue, eStatus_SlaveVersionTooNew));

StateInfo infoOf(eStatus_Bits state, Severity severity) {
    auto text = inspect::stateText(state);
    auto folded = lowerCase(text);
    return {severity, std::move(text), std::move(folded)};
}

// The names are kept: they are asked for by the thousand, and are made from a whole printed line.
std::array<StateInfo, severities.size()> allInfos() {
    std::array<StateInfo, severities.size()> infos;
    for (std::size_t row = 0; row < infos.size(); ++row) {
        infos.at(row) = infoOf(severities.at(row).code, severities.at(row).severity);
    }
    return infos;
}

} // namespace

StateInfo const& stateInfo(eStatus_Bits state) {
    static auto const infos = allInfos();
    static auto const noState =
        infoOf(static_cast<eStatus_Bits>(eStatus_SlaveVersionTooNew + 1), Severity::None);
    if (state < eStatus_ExpectedValue || state > eStatus_SlaveVersionTooNew) {
        return noState;
    }
    return infos.at(static_cast<std::size_t>(state - eStatus_ExpectedValue));
}

} // namespace qel::watch
