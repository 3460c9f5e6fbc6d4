// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The points and values of a unit and their names.
#pragma once

#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/image/StructureFingerprint.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qel::watch {

/// A point of the unit. Reentrant.
struct UnitPoint {
    long long svid;
    std::uint32_t pos;        ///< its slot
    std::uint32_t parent;     ///< index of a point, inspect::NO_NODE for a top-level one
    std::uint32_t depth;      ///< 1 for a top-level point
    std::uint32_t end;        ///< index behind its last descendant
    std::uint32_t firstValue; ///< index of a value
    std::uint32_t valueCount;
    bool isWatched; ///< itself, a value of it or a point below it is selected
    std::string path;
    std::string name; ///< what its path adds to that of its parent: "socket5"
    std::string type; ///< "Schuko"; may be empty
};

/// A value of the unit. Reentrant.
struct UnitValue {
    long long svid;
    std::uint32_t pos;   ///< its slot
    std::uint32_t point; ///< index of its point
    unsigned short key;
    std::string name; ///< of its key: "Active Power"
    std::string path; ///< "unit1/inlet1:active-power"
};

/// Makes the names once and checks with each image whether they are still right.
///
/// Threads: reentrant.
class UnitStructure {
public:
    /// @param names the selection
    explicit UnitStructure(WatchedNames names) : names_(std::move(names)) {}

    /// Takes the structure of an image: points in the order of the tree, parents before their children, and the
    /// selected values. An inactive or incomplete image has none.
    /// @return whether anything differs from the previous image
    bool update(inspect::Image const& image);

    std::vector<UnitPoint> const& points() const { return points_; }
    std::vector<UnitValue> const& values() const { return values_; }

private:
    void rebuild(inspect::Image const& image, inspect::PointTree const& tree);
    void addPoint(inspect::Image const& image, inspect::PointTree const& tree,
                  inspect::PointNode const& node);

    WatchedNames names_;
    inspect::StructureFingerprint fingerprint_; ///< names and order are made from nothing else
    std::vector<UnitPoint> points_;
    std::vector<UnitValue> values_;
};

} // namespace qel::watch
