// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/InputError.h"

namespace qel::tools {

namespace {

constexpr std::size_t longestQuote = 40;
constexpr char firstPrintable = ' ';
constexpr char lastPrintable = '~';

std::string message(InputPlace const& place, std::string_view problem, std::string_view expected) {
    std::string text(place.file);
    if (place.line != 0) {
        text += ':' + std::to_string(place.line);
    }
    text += ": ";
    if (!place.column.empty()) {
        text.append(place.column).append(": ");
    }
    return text.append(problem).append("; expected ").append(expected);
}

} // namespace

InputError::InputError(InputPlace const& place, std::string_view problem, std::string_view expected)
    : std::runtime_error(message(place, problem, expected)) {}

std::string inQuotes(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result = "\"";
    for (char const character : text.substr(0, longestQuote)) {
        if (character >= firstPrintable && character <= lastPrintable) {
            result += character;
        } else {
            auto const byte = static_cast<unsigned char>(character);
            result.append("\\x")
                .append(1, digits[byte / digits.size()])
                .append(1, digits[byte % digits.size()]);
        }
    }
    result += text.size() > longestQuote ? "...\"" : "\"";
    return result;
}

} // namespace qel::tools
