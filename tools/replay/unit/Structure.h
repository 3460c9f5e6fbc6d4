// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The points and values that exist at one moment.
#pragma once

#include "tools/replay/unit/Topology.h"

#include "domain/eStatus_Bits.h"
#include "writer/QelSharedMemoryWriter.h"

#include <cstddef>
#include <cstdint>
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

/// What is measured of a value at one moment.
struct Reading {
    long long svid;
    std::uint64_t time; ///< ms since 1970 UTC
    double number;      ///< in the unit of the recording; energies in Wh and VAh
    eStatus_Bits state;
};

/// A set of values, the points they belong to, all points above those, and the unit.
///
/// Threads: reentrant.
class Structure {
public:
    /// Just the unit.
    Structure() : Structure(std::vector<ValueId>{}) {}
    explicit Structure(std::vector<ValueId> const& values);

    /// Each once, in no particular order.
    std::vector<PointId> const& points() const { return points_; }

    bool has(PointId const& point) const;
    bool has(long long svid) const { return svids_.count(svid) != 0; }

    /// Sensor ids of all values, including the points' own states.
    std::unordered_set<long long> const& svids() const { return svids_; }

    /// Number of values without the points' own states.
    std::size_t valueCount() const { return svids_.size() - points_.size(); }

    /// The structure as the writer takes it for its first build.
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
