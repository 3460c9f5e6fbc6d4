// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The trees on which every operation of the writer is tried.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qel::test {

/// A point as its tree describes it; parents stand before their children, siblings in the order of their list.
struct TreePoint {
    long long svid = 0;
    int parent = -1;     ///< index in the tree, -1 for a top-level point
    int level = 0;       ///< 0 for a device, 4 for a socket
    unsigned values = 0; ///< with the keys 1, 2, ...
    char kind = 'E';     ///< 'E'lectrical, 'R'esidual-current monitor, 'I'2C sensor, socket 'G'roup
};

/// Where a new point may be put, and the sensor id that puts it there.
struct NewPlace {
    long long svid = 0;
    int parent = -1;
    std::string text; ///< for people
};

struct Tree {
    std::vector<TreePoint> points;
    std::string name; ///< "E1(E0R2)G1": kinds, numbers of values, children in brackets

    /// Every place of every list, with every kind that may stand there.
    std::vector<NewPlace> newPlaces() const;

    /// An electrical point in front of this one, among its siblings.
    NewPlace placeBefore(std::size_t point) const;

    /// The point and everything below it.
    std::vector<std::size_t> subtree(std::size_t point) const;
};

/// All trees of that many points, without values. Identified with each other are only trees that differ in the numbers
/// by which their points are told apart (first or third inlet), since the writer only compares these: siblings have ids
/// in the order of their list. The kinds are those that the sensor ids allow: electrical points anywhere, and only these
/// have children; residual-current monitors and socket groups below any electrical point, socket groups also at the top,
/// I2C sensors below a device. (The list's order lets no other sequence of kinds arise.) A sixth level, which ids do not
/// have, is electrical.
std::vector<Tree> treesOf(std::size_t points);

/// The tree with numbers of values given out: 0, 1 or 2 to each point.
/// @param pattern 0 to 2: the same number to every point; 3 to 5: 0, 1, 2 in turn, beginning differently; so each point
///                has each number beside neighbours that have the same and beside neighbours that have another
Tree withValues(Tree tree, unsigned pattern);

/// As many patterns as there are; the numbers of values of points that an operation does not touch do not matter to
/// its stores.
constexpr unsigned valuePatterns = 6;

/// The tree with the numbers of values that the digits of @p number say to the base of 3; 3^points of them are all.
Tree withValuesByNumber(Tree tree, unsigned number);

} // namespace qel::test
