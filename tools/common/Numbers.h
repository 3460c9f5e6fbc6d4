// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Texts that are numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace CLI {
class Validator;
} // namespace CLI

namespace qel::tools {

/// Reads a whole text as a decimal number: "12.5", "-3", "1e3". The locale does not matter. Reentrant.
/// @return none for other texts, and for infinity and NaN
std::optional<double> parseNumber(std::string_view text);

/// Reads a whole text as decimal digits. Reentrant.
/// @return none for other texts, and for numbers beyond 64 bits
std::optional<std::uint64_t> parseDigits(std::string_view text);

/// Accepts finite numbers in a range. "nan" and "inf" are refused, which a plain comparison with the bounds would let
/// pass. The help does not mention the range.
///
/// Threads: reentrant.
/// @param min, max the smallest and the greatest number accepted
CLI::Validator finiteBetween(double min, double max);

} // namespace qel::tools
