// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/PlainText.h"

#include "tools/qelshm/terminal/ExactText.h"

#include "inspect/naming/StateClass.h"

#include <cmath>

namespace qel::stream {

std::string plainNumber(double number, eStatus_Bits state) {
    return inspect::hasNumber(state) && std::isfinite(number) ? tools::exactText(number) : "";
}

} // namespace qel::stream
