// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region as a recording has it.
#pragma once

#include "tools/replay/capture/RegionUpdate.h"

#include "inspect/image/Image.h"
#include "region/QelSharedMemoryAccess.h"
#include "writer/WriterLock.h"

#include <optional>

namespace qel::tools {

/// Owns the region: creates it when constructed, removes it when destroyed. One per machine. The writer cannot bring it
/// into a recorded condition, since it decides about slots by itself, so images are stored here.
///
/// Threads: bound to one thread.
class CapturedRegion : public shm::QelSharedMemoryAccess {
public:
    /// Creates the region, inactive and empty.
    /// @throws std::runtime_error when that fails
    CapturedRegion();

    /// Makes the region equal to an image, byte for byte, in the order of RegionUpdate. A reader that looks on may see
    /// fewer points and values meanwhile, as while a writer changes the structure.
    /// @param image of a whole region
    RegionChange store(inspect::Image const& image);

private:
    std::optional<shm::WriterLock> lock_; ///< others see that a writer lives
};

} // namespace qel::tools
