// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments that are numbers.
#pragma once

namespace CLI {
class Validator;
} // namespace CLI

namespace qel::tools {

/// Accepts finite numbers in a range. "nan" and "inf" are refused, which a plain comparison with the bounds would let
/// pass. The help does not mention the range.
///
/// Threads: reentrant.
/// @param min, max the smallest and the greatest number accepted
CLI::Validator finiteBetween(double min, double max);

} // namespace qel::tools
