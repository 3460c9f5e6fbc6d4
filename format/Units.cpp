// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Units.h"

namespace tav {

std::string unitText(std::uint8_t code) {
    auto const symbol = unitSymbol(code);
    if (code == unit::percent) {
        return "%%";
    }
    if (symbol == unknownUnit) {
        // Deliberate: the code itself as one character, not its digits.
        return std::string("UNIT_") + static_cast<char>(code);
    }
    return std::string(symbol);
}

} // namespace tav
