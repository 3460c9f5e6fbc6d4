// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How often a test repeats what fails rarely.
#pragma once

#include <cstdlib>

namespace qel::test {

/// @return @p full when the environment asks for endurance (QEL_TEST_LONG is set), else @p brief
inline int rounds(int brief, int full) {
    return std::getenv("QEL_TEST_LONG") == nullptr ? brief : full;
}

} // namespace qel::test
