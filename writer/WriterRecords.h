// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the writer keeps beside its map of definitions.
#pragma once

#include "writer/SlotsBySvid.h"
#include "writer/StateChanges.h"

namespace shm {

/// Lies on the heap, because the size of the writer is part of the binary interface.
///
/// Threads: as its members say.
struct WriterRecords {
    SlotsBySvid slots;    ///< the same points as in the map, for fast look-up
    StateChanges changes; ///< what propagateStates() has to combine
};

} // namespace shm
