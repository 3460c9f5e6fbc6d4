// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What happened while somebody watched.
#pragma once

#include "tools/qelshm/terminal/Style.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace qel::watch {

/// A change that is worth a line. Reentrant.
struct Event {
    std::uint64_t at; ///< when it was seen, ms since 1970 UTC
    std::string text;
    tools::Style style;
};

/// The newest events.
///
/// Threads: reentrant.
class EventLog {
public:
    static constexpr std::size_t capacity = 1000;

    /// Adds the newest event; drops the oldest one when the log is full.
    void add(Event event);

    /// Oldest first.
    std::deque<Event> const& events() const { return events_; }

    /// @return how many old events were dropped
    std::uint64_t dropped() const { return dropped_; }

private:
    std::deque<Event> events_;
    std::uint64_t dropped_ = 0;
};

} // namespace qel::watch
