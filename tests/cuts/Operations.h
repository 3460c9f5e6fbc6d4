// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the writer is made to do to a tree.
#pragma once

#include "tests/cuts/TreeShapes.h"
#include "tests/cuts/WriterBench.h"

#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// One or several calls of the writer that readers may see parts of.
struct Operation {
    std::string name;
    bool isScarce = false; ///< no slot is free at the start, so what it frees is what it takes
    std::vector<std::function<void(WriterBench&)>> calls;
};

/// Every operation on every place of the tree:
///
/// - a new point with two values in each place of each list (with fewer values the stores are the first of these);
/// - two new values on each point;
/// - each point removed alone, and with everything below it;
/// - the same with a new point in the freed slots, beside the removed one and in another list, and its values stored;
/// - the same with the freed value slots given to a point that stays, and its values stored;
/// - one call that adds a point and removes another with all below it;
/// - types, numbers, a text, energies and point states stored, alarms propagated, activation once more.
std::vector<Operation> operationsOn(Tree const& tree);

} // namespace qel::test
