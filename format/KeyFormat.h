// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How the values of a key are formatted and scaled.
#pragma once

#include <cstdint>
#include <optional>

namespace tav {

/// What a key's values look like.
struct KeyFormat {
    unsigned short code = 0; ///< the key
    int decimals = 1;
    std::optional<std::uint8_t> unit;     ///< unit code, see Units.h
    std::optional<unsigned int> scalepos; ///< digits after the point of the fixed-point form
};

/// The key's format. An unknown key has one decimal, no unit and no scale.
///
/// Threads: reentrant.
KeyFormat keyFormat(unsigned short key);

/// Digits after the point of the key's fixed-point form, 0 for a key without a scale.
/// Logs at WARN in "qel.shm.access.format" that a key has no scale.
///
/// Threads: reentrant.
unsigned int scalepos(unsigned short key);

/// 10 to the power of a scale position, and its inverse.
///
/// Threads: reentrant.
/// @throws std::out_of_range for a position above 5
double scaleFactor(unsigned int position);
double inverseScaleFactor(unsigned int position);

} // namespace tav
