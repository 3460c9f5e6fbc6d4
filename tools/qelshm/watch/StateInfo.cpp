// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/StateInfo.h"

#include "tools/qelshm/terminal/Text.h"

#include "inspect/naming/StateClass.h"
#include "inspect/naming/StateText.h"

#include <array>
#include <cstddef>

namespace qel::watch {

namespace {

constexpr std::size_t stateCount = eStatus_SlaveVersionTooNew - eStatus_ExpectedValue + 1;

Severity severityOf(eStatus_Bits state) {
    switch (inspect::classOf(state)) {
    case inspect::StateClass::NoState:
    case inspect::StateClass::NoValue:
        return Severity::None;
    case inspect::StateClass::Plain:
    case inspect::StateClass::Good:
        return Severity::Normal;
    case inspect::StateClass::Identify:
    case inspect::StateClass::Out:
    case inspect::StateClass::Busy:
        return Severity::Notice;
    case inspect::StateClass::Warning:
        return Severity::Warning;
    case inspect::StateClass::Alarm:
        return Severity::Alarm;
    }
    return Severity::None;
}

StateInfo infoOf(eStatus_Bits state) {
    auto text = inspect::stateText(state);
    auto folded = lowerCase(text);
    return {severityOf(state), std::move(text), std::move(folded)};
}

// The names are kept: they are asked for by the thousand, and are made from a whole printed line.
std::array<StateInfo, stateCount> allInfos() {
    std::array<StateInfo, stateCount> infos;
    auto state = static_cast<int>(eStatus_ExpectedValue);
    for (auto& info : infos) {
        info = infoOf(static_cast<eStatus_Bits>(state++));
    }
    return infos;
}

} // namespace

StateInfo const& stateInfo(eStatus_Bits state) {
    static auto const infos = allInfos();
    static auto const noState = infoOf(static_cast<eStatus_Bits>(eStatus_SlaveVersionTooNew + 1));
    if (state < eStatus_ExpectedValue || state > eStatus_SlaveVersionTooNew) {
        return noState;
    }
    return infos.at(static_cast<std::size_t>(state - eStatus_ExpectedValue));
}

} // namespace qel::watch
