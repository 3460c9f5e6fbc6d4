// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Following the region's name from object to object.
#pragma once

#include "tools/qelshm/watch/Look.h"

#include "inspect/image/LiveRegion.h"

namespace qel::watch {

/// Holds the object open that the name leads to, and takes the next one when the name leads elsewhere. Reads only; the
/// writer notices nothing. Threads: not shared.
class Attachment {
public:
    Attachment();

    /// Copies the region as it is now, of a new object if there is one. An object that cannot be opened is no error
    /// and tried again with the next look.
    /// Throws std::system_error when the system cannot read an open object.
    Look look();

private:
    inspect::LiveRegion region_;
    unsigned objects_;
};

} // namespace qel::watch
