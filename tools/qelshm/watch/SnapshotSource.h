// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Copies of the live region, from object to object.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"

#include <cstdint>

namespace qel::watch {

/// The region at one moment. Reentrant.
struct Snapshot {
    inspect::Image image;
    inspect::RegionSource source;
    unsigned objects = 0;    ///< how many objects were opened until now, one after the other
    std::uint64_t now = 0;   ///< ms since 1970 UTC
    std::uint64_t ticks = 0; ///< ms of a clock that is never set back
};

/// Holds the live object open and opens the next one when its name leads elsewhere. Reads only; the writer notices
/// nothing.
///
/// Threads: reentrant.
class SnapshotSource {
public:
    /// Opens the object if there is one.
    SnapshotSource();

    /// Copies the region as it is now, of a new object if there is one. A missing object is no error: each call looks
    /// for it again.
    /// @throws std::system_error when the system cannot read an open object
    Snapshot take();

private:
    inspect::LiveRegion region_;
    unsigned objects_;
};

} // namespace qel::watch
