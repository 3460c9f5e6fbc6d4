// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The points and values that exist at one moment.
#pragma once

#include "tools/replay/unit/PointId.h"

#include "writer/QelSharedMemoryWriter.h"

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace qel::tools {

/// A value by its point and its key.
struct ValueId {
    PointId point;
    unsigned short key;
};

/// Sensor id of a value.
long long valueSvid(ValueId const& value);

/// A set of values with the points they belong to, all points above those, and the unit.
///
/// Threads: immutable; any thread.
class Structure {
public:
    /// Just the unit.
    Structure() : Structure(std::vector<ValueId>{}) {}
    explicit Structure(std::vector<ValueId> const& values);

    /// Each once, in no particular order.
    std::vector<PointId> const& points() const { return points_; }

    bool has(PointId const& point) const;
    bool has(long long svid) const { return svids_.count(svid) != 0; }

    /// Sensor ids of all values, the points' own states among them.
    std::unordered_set<long long> const& svids() const { return svids_; }

    std::size_t valueCount() const { return svids_.size() - points_.size(); }

    /// The same for the writer's first build.
    shm::QelSharedMemoryWriter::Definitions definitions() const;

    /// Points of this structure that another one does not have.
    std::vector<PointId> pointsMissingIn(Structure const& other) const;

private:
    void addPoint(PointId const& point);

    std::vector<PointId> points_;
    std::unordered_set<long long> svids_;
    std::vector<ValueId> values_;
};

} // namespace qel::tools
