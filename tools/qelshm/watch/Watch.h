// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Shows a live region until it is told to stop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace qel::watch {

struct WatchOptions {
    std::vector<std::string> names;          ///< what to watch, see WatchedNames; everything without any
    std::optional<std::uint64_t> count;      ///< lines to write, none for no end
    std::chrono::milliseconds interval{250}; ///< between two looks
    std::chrono::seconds wait{5};            ///< for something to read, when lines are written
};

/// With a terminal as standard input and output and without a count: a table that is kept current until q or a signal
/// ends it. Else a line for each change, until enough are written, their reader is gone, or a signal comes. Follows
/// the region from object to object.
///
/// Threads: the main one; SIGINT, SIGTERM and SIGHUP must not be handled by others meanwhile.
/// @param out  standard output, for lines
/// @param tell called with what it waits for, when lines are written and that takes more than a moment
/// @return the exit status
/// Throws std::runtime_error when the terminal cannot be used, or when lines are to be written and there was nothing
/// to read in time.
int runWatch(WatchOptions const& options, std::ostream& out,
             std::function<void(std::string const&)> const& tell);

} // namespace qel::watch
