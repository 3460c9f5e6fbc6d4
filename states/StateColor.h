// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Colours of the status LED.
#pragma once

#include <cstdint>

namespace shm {

/// A colour as seen. LedTables.h has the brightness of each channel.
enum class StateColor : std::uint16_t {
    Off = 0,
    Red = 1,
    Green = 2,
    Blue = 3,
    Orange = 4,
    Cyan = 5,
    Magenta = 6,
    White = 7,
};

} // namespace shm
