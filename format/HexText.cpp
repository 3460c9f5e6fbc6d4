// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/HexText.h"

#include <array>
#include <charconv>

namespace shm {

std::string hexText(std::uint64_t number, std::size_t minDigits) {
    constexpr int base = 16;
    std::array<char, 2 * sizeof number> digits{};
    auto const* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
    auto const count = static_cast<std::size_t>(end - digits.data());

    std::string text = "0x";
    text.append(count < minDigits ? minDigits - count : 0, '0');
    return text.append(digits.data(), count);
}

} // namespace shm
