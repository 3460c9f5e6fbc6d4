// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Numbers.h"

#include <CLI/Option.hpp>
#include <CLI/TypeTools.hpp>
#include <CLI/Validators.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace qel::tools {

namespace {

template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number{};
    auto const* const end = text.data() + text.size();
    auto const parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

/// Without an exponent: "0.001", "1000000000".
std::string plainText(double number) {
    std::array<char, 400> text{}; // the longest number of a double has 309 digits before the point
    auto const result =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return {text.data(), result.ptr};
}

} // namespace

std::optional<double> parseNumber(std::string_view text) {
    auto const number = wholeNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::uint64_t> parseDigits(std::string_view text) {
    return wholeNumber<std::uint64_t>(text);
}

CLI::Validator finiteBetween(double min, double max) {
    auto const problem = [min, max](std::string& text) {
        double number = 0.0;
        bool const isNumber = CLI::detail::lexical_cast(text, number) && std::isfinite(number);
        return isNumber && number >= min && number <= max
                   ? std::string()
                   : '"' + text + "\" is not a number from " + plainText(min) + " to " + plainText(max);
    };
    return {problem, "", "finite number"};
}

} // namespace qel::tools
