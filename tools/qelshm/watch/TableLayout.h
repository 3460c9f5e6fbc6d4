// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The columns of the table.
#pragma once

namespace qel::watch {

/// Widths of the columns; 0 for one that there is no room for. Reentrant.
struct TableLayout {
    int name = 0;
    int value = 0;
    int state = 0;
    int minimum = 0;
    int maximum = 0;
    int mean = 0;
    int rate = 0;
    int age = 0;
    int indent = 2;          ///< of each level of the tree
    bool isTypeShown = true; ///< behind the names of points
};

/// Distributes the columns of a screen. Names have at least a third of it, and 30 columns where the others can do with
/// less: first the age goes, then the rate, the mean and the limits, then the types; then value and state become
/// narrower, and at last the state goes, too. Reentrant.
/// @param columns        of the screen
/// @param withStatistics whether minimum, maximum, mean and rate are wanted
TableLayout layoutOf(int columns, bool withStatistics);

} // namespace qel::watch
