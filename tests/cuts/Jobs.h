// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which trees a run of these tests walks.
#pragma once

#include "tests/cuts/TreeShapes.h"

#include <cstddef>
#include <vector>

namespace qel::test {

/// Trees of up to @p points points with numbers of values, dealt out to that many parts.
/// In the long run all shapes; with up to three points every number of values of every point, above that the patterns of
/// withValues(), half of them with six points. In the brief run all shapes of up to three points with all patterns, and
/// some of each larger size with one pattern. Programs under a sanitizer take every eighth of the brief run's trees.
std::vector<Tree> treesToWalk(std::size_t points, unsigned part, unsigned parts);

} // namespace qel::test
