// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The numbers at the ends of a graph's axis.
#pragma once

namespace qel::watch {

/// A range of numbers from the bottom of a graph to its top. Reentrant.
struct GraphScale {
    double low = 0.0;
    double high = 1.0;

    /// @return where a number lies between 0 (bottom) and 1 (top)
    double partOf(double number) const;
};

/// Round limits around a range. They leave at least a tenth of its largest number between them, so that noise does not
/// fill a graph, and include 0 if it is not farther than the range is wide. Reentrant.
/// @param least, greatest finite; not descending
GraphScale scaleAround(double least, double greatest);

} // namespace qel::watch
