// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Shows a live region until the user stops it.
#pragma once

#include "tools/qelshm/watch/WatchedUnit.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace qel::watch {

/// What to show and how. Reentrant.
struct WatchOptions {
    std::vector<std::string> names;          ///< the selection, see WatchedNames; empty for everything
    std::optional<std::uint64_t> count;      ///< number of lines to write; none for no limit
    std::chrono::milliseconds interval{250}; ///< between two snapshots
    std::chrono::seconds wait{5};            ///< longest wait for the region before the first line
    bool isColoured = false;
    Freshness freshness; ///< when the table marks values as stale, and the unit as silent
};

/// Shows a table if standard input and output are a terminal that can address its cursor and there is no count; q or a
/// signal ends it. Otherwise writes a line for each change; enough lines, a signal, or the end of their reader end it. Follows the region from
/// object to object. Thread-bound to the main thread; no other thread may handle SIGINT, SIGTERM or SIGHUP meanwhile.
/// @param out  standard output, for the lines
/// @param tell called with a line when the wait for the region lasts longer than a moment, and for settings that cannot be
///             read
/// @return the exit status
/// @throws std::runtime_error when the terminal is not usable, or when no region was there in time for the first line
int runWatch(WatchOptions const& options, std::ostream& out,
             std::function<void(std::string const&)> const& tell);

} // namespace qel::watch
