// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a replay reports to its user.
#pragma once

#include "tools/replay/Schedule.h"
#include "tools/replay/csv/RecordingFeed.h"

#include "domain/eStatus_Bits.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace qel::tools {

/// What is replayed, one step each.
enum class ReplaySteps : std::uint8_t {
    Rows,    ///< of recordings
    Samples, ///< of a capture
};

/// Writes one line per event, immediately, and counts for the summary. Values are written with their units, file names
/// without control characters. Times are those of the recording or capture.
///
/// Threads: reentrant.
class ReplayLog {
public:
    /// @param out must outlive the log; null writes nothing
    explicit ReplayLog(std::ostream* out, ReplaySteps steps = ReplaySteps::Rows) : out_(out), steps_(steps) {}

    void started(std::size_t points, std::size_t values, std::size_t files, std::size_t steps);
    void crossed(Crossing const& crossing);
    void missing(std::uint64_t time, std::string const& file, std::size_t cells, std::size_t ofCells);
    void changed(std::uint64_t time, Change const& change, std::size_t points, std::size_t values);
    void changed(std::uint64_t time, std::size_t points, std::size_t values);
    void cut(std::uint64_t time, std::size_t links);
    void set(std::uint64_t time, std::string const& what);
    void unset(std::uint64_t time, std::string const& what);
    void globalState(std::uint64_t time, eStatus_Bits before, eStatus_Bits after);
    /// @param reason as to ended()
    void held(std::string_view reason);
    /// @param reason  one of those below, or another one, which is followed by the number of steps
    /// @param seconds real time from the first step to the last one
    void ended(std::string_view reason, double seconds, eStatus_Bits globalState);

    /// The reason to end after the last step.
    std::string allReplayed() const;

    /// The reason to end before the last step, because of --until.
    /// @param of number of steps there are; none if it is not known or endless
    std::string stoppedEarly(std::optional<std::uint64_t> of) const;

    void countStep() { ++taken_; }
    void countUpdates(std::uint64_t updates) { updates_ += updates; }
    void countRefused() { ++refused_; }

private:
    void write(std::string const& line);
    void event(std::uint64_t time, std::string_view kind, std::string const& text);

    std::string noun() const;

    std::ostream* out_;
    ReplaySteps steps_;
    std::uint64_t taken_ = 0;
    std::uint64_t updates_ = 0;
    std::uint64_t refused_ = 0;
    std::uint64_t crossings_ = 0;
    std::uint64_t changes_ = 0;
};

} // namespace qel::tools
