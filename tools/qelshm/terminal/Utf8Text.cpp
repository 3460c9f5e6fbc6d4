// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Utf8Text.h"

#include <algorithm>

namespace qel::tools {

namespace {

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

constexpr char lowerCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
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

std::string shortened(std::string_view text, std::size_t width) {
    auto const characters = widthOf(text);
    if (characters <= width) {
        return std::string(text);
    }
    if (width == 0) {
        return {};
    }
    // The end tells more than the beginning: it has the number of a socket, or the kind of a power.
    auto const last = width / 2;
    auto const first = width - 1 - last;
    return std::string(text.substr(0, bytesOf(text, first))) + '~' +
           std::string(text.substr(bytesOf(text, characters - last)));
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    return part.empty() ||
           std::search(text.begin(), text.end(), part.begin(), part.end(), [](char left, char right) {
               return lowerCase(left) == lowerCase(right);
           }) != text.end();
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

} // namespace qel::tools
