// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/PlainText.h"

#include "tools/qelshm/terminal/ExactText.h"

#include "inspect/naming/StateClass.h"

namespace qel::stream {

std::string plainNumber(double number, eStatus_Bits state) {
    auto const shown = inspect::numberIn(state, number);
    return shown ? tools::exactText(*shown) : "";
}

} // namespace qel::stream
