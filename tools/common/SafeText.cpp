// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/SafeText.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel::tools {

namespace {

/// How a character of so many bytes begins, and the smallest code that needs so many.
struct Encoding {
    unsigned char mask;
    unsigned char lead;
    std::uint32_t smallest;
};

constexpr std::array<Encoding, 4> encodings{
    {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

constexpr unsigned bitsPerContinuation = 6;
constexpr unsigned char continuationMask = 0xC0;
constexpr unsigned char continuationLead = 0x80;
constexpr std::uint32_t lastCode = 0x10FFFF;

bool isPrintable(std::uint32_t code) {
    constexpr std::uint32_t firstPrintable = 0x20;
    constexpr std::uint32_t del = 0x7F;
    constexpr std::uint32_t lastControl = 0x9F;
    constexpr std::uint32_t firstSurrogate = 0xD800;
    constexpr std::uint32_t lastSurrogate = 0xDFFF;
    return code >= firstPrintable && (code < del || code > lastControl) && code <= lastCode &&
           (code < firstSurrogate || code > lastSurrogate);
}

/// Number of bytes of the printable character that the text begins with, 0 when it begins with none.
std::size_t printableBytes(std::string_view text) {
    auto const first = static_cast<unsigned char>(text.front());
    for (std::size_t length = 1; length <= encodings.size(); ++length) {
        auto const& encoding = encodings.at(length - 1);
        if ((first & encoding.mask) != encoding.lead || text.size() < length) {
            continue;
        }
        std::uint32_t code = first & static_cast<unsigned char>(~encoding.mask);
        for (auto const next : text.substr(1, length - 1)) {
            auto const byte = static_cast<unsigned char>(next);
            if ((byte & continuationMask) != continuationLead) {
                return 0;
            }
            code = code << bitsPerContinuation | (byte & static_cast<unsigned char>(~continuationMask));
        }
        return code >= encoding.smallest && isPrintable(code) ? length : 0;
    }
    return 0;
}

std::string escaped(char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    auto const bits = static_cast<unsigned char>(byte);
    return {'\\', 'x', digits[bits >> 4U], digits[bits & 0xFU]};
}

} // namespace

std::string safeText(std::string_view text) {
    std::string safe;
    while (!text.empty()) {
        auto const length = printableBytes(text);
        if (length == 0) {
            safe += escaped(text.front());
            text.remove_prefix(1);
        } else {
            safe.append(text.substr(0, length));
            text.remove_prefix(length);
        }
    }
    return safe;
}

} // namespace qel::tools
