// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/PlainText.h"

#include "tools/qelshm/terminal/ExactText.h"

#include "inspect/naming/StateClass.h"

#include <cmath>

namespace qel::stream {

std::string plainNumber(double number, eStatus_Bits state) {
    auto const kind = inspect::classOf(state);
    if (kind == inspect::StateClass::NoState || kind == inspect::StateClass::NoValue ||
        !std::isfinite(number)) {
        return "";
    }
    return tools::exactText(number);
}

} // namespace qel::stream
