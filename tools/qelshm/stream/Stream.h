// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Follows a live region for programs.
#pragma once

#include "tools/qelshm/stream/ISink.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qel::stream {

/// What to follow and where it goes. Reentrant.
struct StreamOptions {
    watch::WatchedNames names;
    std::chrono::milliseconds interval; ///< between two snapshots
    std::chrono::seconds wait;          ///< longest wait for the region at first
    std::vector<std::unique_ptr<ISink>> sinks;
};

/// Gives each snapshot to the sinks, until a sink is done, a signal arrives, or the reader of standard output is gone. A
/// stream that ends by itself waits for what sinks still work on. Follows the region from object to object. Thread-bound
/// to the main thread; no other thread may handle SIGINT, SIGTERM or SIGHUP meanwhile.
/// @param tell called with a line when the wait for the region lasts longer than a moment
/// @throws std::runtime_error when no region was there in time
void runStream(StreamOptions const& options, std::function<void(std::string const&)> const& tell);

} // namespace qel::stream
