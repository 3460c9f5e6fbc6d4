// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Random numbers for tests.
#pragma once

#include <cstdint>
#include <random>

namespace qel::test {

/// The same sequence in every run.
inline std::mt19937 randomNumbers(std::uint32_t seed) {
    return std::mt19937(seed);
}

} // namespace qel::test
