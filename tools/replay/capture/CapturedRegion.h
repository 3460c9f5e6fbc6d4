// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region as a capture holds it.
#pragma once

#include "tools/replay/capture/RegionUpdate.h"

#include "inspect/image/Image.h"
#include "region/QelSharedMemoryAccess.h"
#include "writer/WriterLock.h"

#include <optional>

namespace qel::tools {

/// Creates the region when constructed and removes it when destroyed. One per machine. A writer cannot reproduce a
/// captured region, since it assigns the slots itself; this class stores whole images.
///
/// Threads: thread-bound to the thread that made it.
class CapturedRegion : public shm::QelSharedMemoryAccess {
public:
    /// Creates the region, inactive and empty.
    /// @throws std::runtime_error if that fails
    CapturedRegion();

    /// Makes the region equal to an image, byte for byte, in the order of RegionUpdate. As while a writer changes the
    /// structure, readers may see fewer points and values until the call returns.
    /// @param image of a whole region
    RegionChange store(inspect::Image const& image);

private:
    std::optional<shm::WriterLock> lock_; // shows other processes that a writer is running
};

} // namespace qel::tools
