// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Numbers as text, independent of the locales of the process and of streams.
///
/// Threads: reentrant.
#pragma once

#include <cstdint>
#include <ios>
#include <string>

namespace shm {

/// Formats a number as printf does with "%.<decimals>f" in the locale "C".
/// @param number   any double
/// @param decimals digits after the point, 0 to 16
/// @return for example "230.1", "-0.0", "inf" or "nan"
std::string fixedText(double number, int decimals);

/// Formats a number as a stream with these flags does in the classic locale.
/// @param number any number
/// @param flags  the base, std::showbase and std::uppercase are used
/// @return the text
std::string integerText(std::uint64_t number, std::ios_base::fmtflags flags);

/// Names a boolean.
/// @param value the boolean
/// @return "true" or "false"
char const* wordOf(bool value);

} // namespace shm
