// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/StateInfo.h"

#include "inspect/naming/StateText.h"

#include <array>
#include <cstddef>

namespace qel::watch {

namespace {

constexpr std::size_t stateCount = eStatus_SlaveVersionTooNew - eStatus_ExpectedValue + 1;

StateInfo infoOf(eStatus_Bits state) {
    return {inspect::stateText(state)};
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
