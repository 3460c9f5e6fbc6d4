// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs a command for changes of states.
#pragma once

#include "tools/qelshm/stream/ISink.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace qel::stream {

/// Starts a command for each change of a state, one after the other, without a shell. The change is in its environment:
///
/// | variable          | holds                                                                      |
/// |-------------------|----------------------------------------------------------------------------|
/// | `QELSHM_NAME`     | `unit1/inlet1:active-power`; `unit1/inlet1` for the state of a point itself |
/// | `QELSHM_POINT`    | `unit1/inlet1`                                                             |
/// | `QELSHM_KEY`      | `active-power`; empty for the state of a point itself                      |
/// | `QELSHM_VALUE`    | the number; empty for a point, and before the first delivery               |
/// | `QELSHM_UNIT`     | `W`; empty for none                                                        |
/// | `QELSHM_STATE`    | `High Alarm`                                                               |
/// | `QELSHM_OLD_STATE`| `No Error`                                                                 |
/// | `QELSHM_TIME`     | time of the value, ISO 8601 UTC; empty for never                           |
///
/// Its standard input is empty; what it prints goes to standard error. A command that fails is told, and so are changes
/// that find the queue full.
///
/// Threads: thread-bound to the main thread.
class CommandSink : public ISink {
public:
    static constexpr std::size_t mostWaiting = 1000; ///< changes

    /// @param command program, looked up in PATH, and its arguments; not empty
    /// @param tell    called with a line for the user
    CommandSink(std::vector<std::string> command, std::function<void(std::string const&)> tell);

    /// Reaps nothing: a command that runs goes on.
    ~CommandSink() override = default;

    void take(Report const& report) override;
    bool work() override;
    void end() override;

private:
    using Environment = std::vector<std::string>; ///< "NAME=VALUE" each

    void start(Environment const& environment);
    void reap();
    void tellDropped();

    std::vector<std::string> command_;
    std::function<void(std::string const&)> tell_;
    std::deque<Environment> waiting_;
    std::uint64_t dropped_ = 0; // since it was told
    pid_t running_ = 0;         // 0: none
};

} // namespace qel::stream
