#include "tools/qelshm/Style.h"

#include "region/TableLookup.h"

#include <array>

namespace qel::tools {

namespace {

struct StateRow {
    eStatus_Bits code;
    Style style;
};

constexpr std::array<StateRow, 46> stateStyles{{
    {eStatus_ExpectedValue, Style::Faint},
    {eStatus_UndefinedValue, Style::Faint},
    {eStatus_NoError, Style::Plain},
    {eStatus_HighAlarm, Style::Alarm},
    {eStatus_LowAlarm, Style::Alarm},
    {eStatus_HighWarning, Style::Warning},
    {eStatus_LowWarning, Style::Warning},
    {eStatus_Lost, Style::Alarm},
    {eStatus_Deactivated, Style::Faint},
    {eStatus_OnAlarmIdentify, Style::Alarm},
    {eStatus_OffAlarmIdentify, Style::Alarm},
    {eStatus_OnAlarm, Style::Alarm},
    {eStatus_OffAlarm, Style::Alarm},
    {eStatus_OnWarningIdentify, Style::Warning},
    {eStatus_OffWarningIdentify, Style::Warning},
    {eStatus_OnWarning, Style::Warning},
    {eStatus_OffWarning, Style::Warning},
    {eStatus_OnIdentify, Style::Good},
    {eStatus_OffIdentify, Style::Faint},
    {eStatus_On, Style::Good},
    {eStatus_Off, Style::Faint},
    {eStatus_OnChildAlarm, Style::Alarm},
    {eStatus_OffChildAlarm, Style::Alarm},
    {eStatus_OnChildWarning, Style::Warning},
    {eStatus_OffChildWarning, Style::Warning},
    {eStatus_ChildAlarm, Style::Alarm},
    {eStatus_ChildWarning, Style::Warning},
    {eStatus_LostChild, Style::Alarm},
    {eStatus_FixInternalHighAlarm, Style::Alarm},
    {eStatus_FixInternalHighWarning, Style::Warning},
    {eStatus_FixInternalLowWarning, Style::Warning},
    {eStatus_FixInternalLowAlarm, Style::Alarm},
    {eStatus_HighUserAndInternalError, Style::Alarm},
    {eStatus_HighUserErrorInternalWarning, Style::Alarm},
    {eStatus_HighUserWarningInternalError, Style::Alarm},
    {eStatus_HighUserAndInternalWarning, Style::Warning},
    {eStatus_DeviceIsUpdating, Style::Busy},
    {eStatus_DeviceUpdateError, Style::Alarm},
    {eStatus_OngoingSwitchOn, Style::Busy},
    {eStatus_High, Style::Plain},
    {eStatus_Low, Style::Plain},
    {eStatus_Alarm, Style::Alarm},
    {eStatus_Warning, Style::Warning},
    {eStatus_OK, Style::Good},
    {eStatus_Disabled, Style::Faint},
    {eStatus_SlaveVersionTooNew, Style::Alarm},
}};
static_assert(shm::coversCodes(stateStyles, -2, 43));

/// What "select graphic rendition" takes.
constexpr std::array<shm::TextRow<Style>, 6> renditions{{{Style::Plain, ""},
                                                         {Style::Good, "32"},
                                                         {Style::Faint, "2"},
                                                         {Style::Warning, "33"},
                                                         {Style::Alarm, "31"},
                                                         {Style::Busy, "35"}}};
static_assert(shm::isSortedByCode(renditions));

} // namespace

Style stateStyle(eStatus_Bits state) {
    auto const* const row = shm::findRow(stateStyles, state);
    return row != nullptr ? row->style : Style::Plain;
}

std::string styled(std::string_view text, Style style) {
    if (style == Style::Plain) {
        return std::string(text);
    }
    return std::string("\x1b[")
        .append(shm::textOf(renditions, style, ""))
        .append("m")
        .append(text)
        .append("\x1b[0m");
}

} // namespace qel::tools
