// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Svid.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace qel::inspect {

namespace {

template <typename Number>
std::optional<Number> wholeNumber(std::string_view digits, int base) {
    Number result = 0;
    auto const* const end = digits.data() + digits.size();
    auto const parsed = std::from_chars(digits.data(), end, result, base);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return std::nullopt;
    }
    return result;
}

} // namespace

std::optional<long long> parseSvid(std::string_view text) {
    constexpr int hexadecimal = 16;
    constexpr int decimal = 10;
    bool const isHexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    if (!text.empty() && text.front() == '-') {
        return wholeNumber<long long>(text, decimal);
    }
    auto const bits = wholeNumber<std::uint64_t>(isHexadecimal ? text.substr(2) : text,
                                                 isHexadecimal ? hexadecimal : decimal);
    if (!bits) {
        return std::nullopt;
    }
    return static_cast<long long>(*bits);
}

} // namespace qel::inspect
