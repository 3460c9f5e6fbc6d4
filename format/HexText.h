// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Hexadecimal numbers as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace shm {

/// "0x" and the number in lower-case hexadecimal, filled with zeros to at least the given digits; independent
/// of the locale and of any stream's flags. Any thread.
std::string hexText(std::uint64_t number, std::size_t minDigits);

} // namespace shm
