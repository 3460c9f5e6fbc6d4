// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lines above the table.
#pragma once

#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/watch/ValueCounts.h"
#include "tools/qelshm/watch/WatchedUnit.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qel::watch {

/// What the header says of the unit. Reentrant.
struct HeaderView {
    std::string condition; ///< "active"
    bool isLive;           ///< there is content to show
    std::string state;     ///< global state; without content, this and the next four are empty
    tools::Style style;    ///< of the state
    std::string led;       ///< "green"
    std::size_t points;
    std::size_t values;
    ValueCounts counts;
    unsigned structureChanges;
    std::string
        delivery;  ///< "last delivery 2s ago", "nothing delivered for >15s"; "no delivery yet" at the start
    bool isSilent; ///< nothing was delivered for longer than allowed
    std::string time;
    std::string note; ///< what happened a moment ago; "" for nothing
};

/// Reentrant.
HeaderView headerOf(WatchedUnit const& unit, Freshness const& freshness);

/// Sentences that say why there is nothing to show; none if the region has content. Reentrant.
std::vector<std::string> messageOf(WatchedUnit const& unit);

} // namespace qel::watch
