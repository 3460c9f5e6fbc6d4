// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What watch remembers from one run to the next.
#pragma once

#include "tools/qelshm/watch/RowList.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::watch {

/// How the user left the table. Reentrant.
struct WatchSettings {
    SortOrder order = SortOrder::Tree;
    bool hasStatistics = false; ///< minimum, maximum, mean and rate are shown
    std::size_t span = 0;       ///< of the graph, index into historyFactors

    friend bool operator==(WatchSettings const& left, WatchSettings const& right) {
        return left.order == right.order && left.hasStatistics == right.hasStatistics &&
               left.span == right.span;
    }
    friend bool operator!=(WatchSettings const& left, WatchSettings const& right) { return !(left == right); }
};

/// The settings as a JSON document. Reentrant.
std::string settingsText(WatchSettings const& settings);

/// Reads such a document. Members that are missing keep their defaults, others are ignored. Reentrant.
/// @throws std::exception with a line for the user if it is no such document
WatchSettings settingsFrom(std::string_view text);

} // namespace qel::watch
