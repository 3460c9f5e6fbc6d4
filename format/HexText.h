// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Hexadecimal numbers as text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace shm {

/// "0x" and a number in lower-case hexadecimal, filled with zeros to at least the given digits; independent of the
/// locale and of any stream's flags. Holds the text in itself.
///
/// Threads: reentrant.
class HexText {
public:
    /// @param minDigits at most 16 count
    constexpr HexText(std::uint64_t number, std::size_t minDigits) {
        constexpr std::string_view letters = "0123456789abcdef";
        constexpr unsigned digitBits = 4;
        constexpr std::uint64_t digitMask = 0xF;
        do {
            text_[--begin_] = letters[static_cast<std::size_t>(number & digitMask)];
            number >>= digitBits;
        } while (number != 0 || (begin_ > 2 && text_.size() - begin_ < minDigits));
        text_[--begin_] = 'x';
        text_[--begin_] = '0';
    }

    /// Valid as long as this object.
    constexpr std::string_view view() const { return {text_.data() + begin_, text_.size() - begin_}; }

private:
    std::array<char, 2 + 2 * sizeof(std::uint64_t)> text_{};
    std::size_t begin_ = text_.size();
};

/// The same as a string.
///
/// Threads: reentrant.
inline std::string hexText(std::uint64_t number, std::size_t minDigits) {
    return std::string(HexText(number, minDigits).view());
}

/// A sensor id as people read and write it: "0x" and 16 digits.
///
/// Threads: reentrant.
inline std::string svidText(long long svid) {
    constexpr std::size_t svidDigits = 16;
    return hexText(static_cast<std::uint64_t>(svid), svidDigits);
}

} // namespace shm
