// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Style.h"

#include "tools/qelshm/terminal/TerminalAbilities.h"

#include "inspect/naming/StateClass.h"
#include "region/TableLookup.h"

#include <unistd.h>

#include <array>
#include <cstdlib>

namespace qel::tools {

namespace {

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
    switch (inspect::classOf(state)) {
    case inspect::StateClass::NoState:
    case inspect::StateClass::Plain:
        return Style::Plain;
    case inspect::StateClass::Good:
    case inspect::StateClass::Identify:
        return Style::Good;
    case inspect::StateClass::NoValue:
    case inspect::StateClass::Out:
        return Style::Faint;
    case inspect::StateClass::Busy:
        return Style::Busy;
    case inspect::StateClass::Warning:
        return Style::Warning;
    case inspect::StateClass::Alarm:
        return Style::Alarm;
    }
    return Style::Plain;
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

bool mayColour(std::string_view choice, int descriptor) {
    if (choice != "auto") {
        return choice == "always";
    }
    char const* const refused = std::getenv("NO_COLOR");
    return (refused == nullptr || *refused == '\0') && isatty(descriptor) == 1 && knowsColours(descriptor);
}

} // namespace qel::tools
