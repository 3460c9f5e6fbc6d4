// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Texts of the unit codes.
#pragma once

#include <cstdint>
#include <string>

namespace tav {

/// Name of a unit, "UNKNOWN UNIT" for a code that is none. The text lives as long as the process. Any thread.
char const* unitName(std::uint8_t code);

/// The unit as it stands in a printf format: its name, but "°C" for "Cel", "°" for "deg" and "%%" for "%"; a
/// code that is none gives "UNIT_" and the code as one raw character. Any thread.
std::string unitText(std::uint8_t code);

} // namespace tav
