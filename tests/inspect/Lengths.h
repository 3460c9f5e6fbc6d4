// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sources of every length that makes a difference, and bytes to fill them.
#pragma once

#include <cstddef>
#include <string>

namespace qel::test {

/// Around every edge of the layout: records, tables, the root's version, the region's end.
constexpr std::size_t sourceLengths[] = {0,      1,      47,     48,     49,     38399,  38400,  38401,
                                         319999, 320000, 320028, 320029, 320031, 320032, 320033, 400000};

/// Bytes of which none is 0xFF and neighbours differ.
inline std::string sourceBytes(std::size_t length) {
    constexpr std::size_t period = 251;
    std::string bytes(length, '\0');
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<char>(i % period);
    }
    return bytes;
}

} // namespace qel::test
