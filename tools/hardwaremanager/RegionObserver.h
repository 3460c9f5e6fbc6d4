// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a hardware manager has to know of the region.
#pragma once

#include "inspect/image/LiveRegion.h"
#include "inspect/image/StructureFingerprint.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace qel::tools {

/// Watches the region from outside: whether it is active, and when its points and values change. It reads the object
/// through a read-only descriptor and never maps it, so an object that is cut off cannot end the process. When the name
/// leads to another object, it opens that one.
///
/// Threads: reentrant.
class RegionObserver {
public:
    enum class Change : std::uint8_t {
        None,
        Activated,        ///< active, and was not before
        StructureChanged, ///< active as before, with other points, values or slots
        Deactivated,      ///< active before, and no longer
    };

    /// Whether readers may begin: the object is as large as a region and its version is that of an active one. Once its
    /// writer was seen alive, it must still be: what a killed writer leaves behind is not active.
    /// @throws std::system_error if the system cannot read an open object
    bool isActive();

    /// Compares the region with that of the previous call. Before the first call nothing was active.
    /// @throws std::system_error if the system cannot read an open object
    Change observe();

    /// Points and values of the last region that observe() found active.
    std::size_t pointCount() const { return pointCount_; }
    /// @copydoc pointCount
    std::size_t valueCount() const { return valueCount_; }

private:
    std::optional<inspect::Image> activeImage();

    inspect::LiveRegion region_;
    bool wasLocked_ = false;                                 ///< the open object, by its writer
    std::optional<inspect::StructureFingerprint> structure_; ///< at the last observe(); none if not active
    std::size_t pointCount_ = 0;
    std::size_t valueCount_ = 0;
};

} // namespace qel::tools
