// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Numbers as text that does not depend on a locale, neither the process's nor a stream's. Any thread.
#pragma once

#include <cstdint>
#include <ios>
#include <string>

namespace shm {

/// What printf makes of the number by "%.<decimals>f" in the locale "C": "230.1", "-0.0", "inf", "nan".
/// @param decimals digits after the point, 0 to 16
std::string fixedText(double number, int decimals);

/// The number as a stream of these flags would write it in the classic locale: its base, std::showbase and
/// std::uppercase count.
std::string integerText(std::uint64_t number, std::ios_base::fmtflags flags);

/// "true" or "false".
char const* wordOf(bool value);

} // namespace shm
