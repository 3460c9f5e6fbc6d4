// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/PlainText.h"

#include "inspect/naming/StateClass.h"

#include <array>
#include <charconv>
#include <cmath>

namespace qel::stream {

std::string plainNumber(double number, eStatus_Bits state) {
    auto const kind = inspect::classOf(state);
    if (kind == inspect::StateClass::NoState || kind == inspect::StateClass::NoValue ||
        !std::isfinite(number)) {
        return "";
    }
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

} // namespace qel::stream
