// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Text.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace qel::watch {

namespace {

struct DurationUnit {
    std::uint64_t ms;
    char letter;
};

constexpr std::array<DurationUnit, 3> longUnits{{{86400000, 'd'}, {3600000, 'h'}, {60000, 'm'}}};
constexpr std::uint64_t msPerSecond = 1000;

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isAscii(char byte) {
    return (static_cast<unsigned char>(byte) & 0x80U) == 0;
}

/// How many bytes the first so many characters take.
std::size_t bytesOf(std::string_view text, std::size_t characters) {
    std::size_t bytes = 0;
    for (; bytes < text.size(); ++bytes) {
        if (!isContinuation(text[bytes]) && characters-- == 0) {
            break;
        }
    }
    return bytes;
}

} // namespace

std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

std::string fitted(std::string_view text, std::size_t width) {
    auto const characters = widthOf(text);
    if (characters <= width) {
        return std::string(text) + std::string(width - characters, ' ');
    }
    return width == 0 ? std::string() : std::string(text.substr(0, bytesOf(text, width - 1))) + '~';
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char byte) {
        return isAscii(byte) ? static_cast<char>(std::tolower(static_cast<unsigned char>(byte))) : byte;
    });
    return lower;
}

std::string asciiOnly(std::string_view text) {
    std::string ascii;
    for (char const byte : text) {
        if (!isContinuation(byte)) {
            ascii += isAscii(byte) ? byte : '?';
        }
    }
    return ascii;
}

std::string durationText(std::uint64_t ms) {
    auto const* const unit = std::find_if(longUnits.begin(), longUnits.end(),
                                          [&](DurationUnit const& candidate) { return ms >= candidate.ms; });
    if (unit != longUnits.end()) {
        return std::to_string(ms / unit->ms) + unit->letter;
    }
    return std::to_string(ms / msPerSecond) + 's';
}

} // namespace qel::watch
