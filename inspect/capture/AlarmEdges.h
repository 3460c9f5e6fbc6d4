// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The moments at which alarms begin.
#pragma once

#include "inspect/image/Image.h"

#include <set>
#include <utility>

namespace qel::inspect {

/// Notices alarms of values: alarms, losses and failed updates.
///
/// Threads: reentrant.
class AlarmEdges {
public:
    /// Takes the next image. An image that is not active changes nothing.
    /// @return whether a value is in alarm that was not in the active image before, or in the first one
    bool add(Image const& image);

private:
    std::set<std::pair<long long, unsigned short>> alarmed_; ///< point and key
};

} // namespace qel::inspect
