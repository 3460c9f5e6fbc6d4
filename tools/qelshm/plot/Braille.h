// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Characters of two by four dots (Unicode, block "Braille Patterns"). All functions are reentrant.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace qel::plot {

constexpr std::size_t brailleDotsAcross = 2;
constexpr std::size_t brailleDotsDown = 4;

/// The bit of a dot.
/// @param row    from the top, below brailleDotsDown
/// @param column from the left, below brailleDotsAcross
constexpr std::uint8_t brailleDot(std::size_t row, std::size_t column) {
    constexpr std::array<std::array<std::uint8_t, brailleDotsAcross>, brailleDotsDown> bits{
        {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}}};
    return bits.at(row).at(column);
}

/// The character with these dots, in UTF-8.
/// @param dots bits of brailleDot()
inline std::string brailleText(std::uint8_t dots) {
    constexpr unsigned low = 0x3F;
    return {'\xE2', static_cast<char>(0xA0U | dots >> 6U), static_cast<char>(0x80U | (dots & low))};
}

} // namespace qel::plot
