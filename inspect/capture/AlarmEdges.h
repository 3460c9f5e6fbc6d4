// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The moments at which alarms begin.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/naming/ValuePattern.h"

#include <set>
#include <utility>

namespace qel::inspect {

/// Notices alarms of values: alarms, losses and failed updates.
///
/// Threads: reentrant.
class AlarmEdges {
public:
    /// @param patterns select the values whose alarms count; without any, all values
    explicit AlarmEdges(ValuePatterns patterns = {}) : patterns_(std::move(patterns)) {}

    /// Takes the next image. An image that is not active changes nothing.
    /// @return whether a selected value is in alarm that was not in the active image before, or in the first one
    bool add(Image const& image);

private:
    ValuePatterns patterns_;
    std::set<std::pair<long long, unsigned short>> alarmed_; ///< point and key
};

} // namespace qel::inspect
