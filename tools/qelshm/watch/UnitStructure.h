// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which points and values a unit has, and what they are called.
#pragma once

#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qel::watch {

struct UnitPoint {
    long long svid;
    std::uint32_t pos;        ///< its slot
    std::uint32_t parent;     ///< index of a point, inspect::NO_NODE for a top-level one
    std::uint32_t depth;      ///< 1 for a top-level point
    std::uint32_t end;        ///< index behind its last descendant
    std::uint32_t firstValue; ///< index of a value
    std::uint32_t valueCount;
    bool isWatched; ///< itself, a value of it or a point below it is to be watched
    std::string path;
    std::string name;   ///< what its path adds to that of its parent: "socket5"
    std::string type;   ///< "Schuko"; may be empty
    std::string folded; ///< path and type in lower case
};

struct UnitValue {
    long long svid;
    std::uint32_t pos;   ///< its slot
    std::uint32_t point; ///< index of its point
    unsigned short key;
    std::string name;   ///< of its key: "Active Power"
    std::string folded; ///< the same in lower case
};

/// Names are made once; whether they still hold is asked for with each image. Threads: not shared.
class UnitStructure {
public:
    /// @param names what is to be watched
    explicit UnitStructure(WatchedNames names) : names_(std::move(names)) {}

    /// Looks at an image. Points stay in the tree's order, parents before their children; of values, only those to
    /// be watched are there. An inactive or incomplete image has none.
    /// @return whether anything is different from the image before
    bool update(inspect::Image const& image);

    std::vector<UnitPoint> const& points() const { return points_; }
    std::vector<UnitValue> const& values() const { return values_; }

private:
    void rebuild(inspect::Image const& image, inspect::PointTree const& tree);
    void addPoint(inspect::Image const& image, inspect::PointTree const& tree,
                  inspect::PointNode const& node);

    WatchedNames names_;
    std::vector<std::int64_t> fingerprint_; ///< all that names and order are made from
    std::vector<UnitPoint> points_;
    std::vector<UnitValue> values_;
};

} // namespace qel::watch
