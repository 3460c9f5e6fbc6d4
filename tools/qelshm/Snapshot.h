/// @file
/// Copies of points and values out of the region.
#pragma once

#include "domain/eStatus_Bits.h"
#include "reader/QelSharedMemoryReader.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmRecords.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qel::tools {

/// A point with its values as they were at one moment.
struct PointView {
    long long svid;
    unsigned depth; ///< 1 for a top-level point
    std::string type;
    eStatus_Bits state;
    std::vector<shm::record::QelShmMVal> values;
};

/// All points, parents before their children.
struct Snapshot {
    eStatus_Bits globalState = eStatus_UndefinedValue;
    std::vector<PointView> points;

    std::size_t valueCount() const;
};

/// Copies the whole region; empty while none is mapped. Replaces the reader's visitor.
Snapshot takeSnapshot(shm::QelSharedMemoryReader& reader);

/// Copies one point with its values. The handle must refer to a slot.
PointView viewOf(shm::QelSharedMemoryReader const& reader, shm::QelShmMPnt const& point);

} // namespace qel::tools
