// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Shows a live region as a table until the user stops it.
#pragma once

#include "tools/qelshm/watch/WatchedUnit.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace qel::watch {

/// What to show and how. Reentrant.
struct TableOptions {
    std::vector<std::string> names;          ///< the selection, see WatchedNames; empty for everything
    std::chrono::milliseconds interval{250}; ///< between two snapshots
    bool isColoured = false;
    Freshness freshness; ///< when values are marked as stale, and the unit as silent
};

/// Whether standard input and output are a terminal that can address its cursor. Thread-bound to the main thread.
bool canShowTable();

/// Shows the table until q or a signal ends it. Follows the region from object to object. Thread-bound to the main thread;
/// no other thread may handle SIGINT, SIGTERM or SIGHUP meanwhile.
/// @param tell called with a line for settings that cannot be read
/// @throws std::runtime_error when the terminal is not usable
void showTable(TableOptions const& options, std::function<void(std::string const&)> const& tell);

} // namespace qel::watch
