// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>

namespace shm {

std::string fixedText(double number, int decimals) {
    constexpr int mostDecimals = 16;
    // A sign, the digits of the largest number (one more than its exponent of ten), the point, the decimals.
    std::array<char, 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + mostDecimals> text{};
    auto* const end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed,
                                    std::min(decimals, mostDecimals))
                          .ptr;
    return {text.data(), static_cast<std::size_t>(end - text.data())};
}

std::string integerText(std::uint64_t number, std::ios_base::fmtflags flags) {
    auto const base = flags & std::ios_base::basefield;
    bool const hex = base == std::ios_base::hex;
    bool const oct = base == std::ios_base::oct;
    constexpr std::size_t octalDigits = 22;
    std::array<char, octalDigits> digits{};
    constexpr int hexBase = 16;
    constexpr int octBase = 8;
    constexpr int decBase = 10;
    auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                    hex   ? hexBase
                                    : oct ? octBase
                                          : decBase)
                          .ptr;

    std::string text;
    if ((flags & std::ios_base::showbase) != 0 && number != 0 && (hex || oct)) {
        text = hex ? "0x" : "0";
    }
    text.append(digits.data(), end);
    if ((flags & std::ios_base::uppercase) != 0) {
        std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
            return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
        });
    }
    return text;
}

char const* wordOf(bool value) {
    return value ? "true" : "false";
}

} // namespace shm
