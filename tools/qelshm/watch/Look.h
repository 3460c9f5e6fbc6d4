// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region as it was seen at one moment.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"

#include <cstdint>

namespace qel::watch {

struct Look {
    inspect::Image image;
    inspect::RegionSource source;
    unsigned objects = 0;    ///< how many objects were opened until now, one after the other
    std::uint64_t now = 0;   ///< ms since 1970 UTC
    std::uint64_t ticks = 0; ///< ms since a fixed moment, of a clock that is never set back
};

} // namespace qel::watch
