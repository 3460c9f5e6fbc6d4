// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a watcher can ask of the table.
#pragma once

#include <cstdint>

namespace qel::watch {

enum class Action : std::uint8_t {
    Up,
    Down,
    PageUp,
    PageDown,
    First,
    Last,
    Toggle, ///< folds or unfolds the point
    Open,   ///< unfolds it; of an open one, goes to its first row
    Close,  ///< folds it; of a folded one or a value, goes to the point above
    OpenAll,
    CloseAll,
    Sort,   ///< the next order
    Filter, ///< starts typing of the filter
    Clear,  ///< takes the filter away
    Follow, ///< goes to each new alarm, or no longer
    Help,
    Quit,
};

} // namespace qel::watch
