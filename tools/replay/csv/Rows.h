// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rows of recordings, in the order in which they are replayed.
#pragma once

#include "tools/replay/csv/Recording.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::tools {

/// One row as it is replayed.
struct Row {
    std::uint64_t time;                       ///< ms since 1970 UTC
    std::vector<std::optional<double>> cells; ///< by column
};

/// The rows of one recording from a first row on, repeated if wanted. Each repetition continues where the last one
/// ended, one time step of the recording later; recorded energy counters continue as well.
///
/// Threads: reentrant.
class RecordingRows {
public:
    /// @param recording must outlive the object
    /// @param first row to start at in each repetition, from 0, below the number of rows
    RecordingRows(Recording const& recording, std::size_t first, bool isEndless);

    /// Time of the first row, ms since 1970 UTC.
    std::uint64_t startTime() const { return recording_->time(first_); }

    /// When the next row is due, in ms after the first one; nothing after the last.
    std::optional<std::uint64_t> due() const;

    /// Takes the next row; there must be one.
    Row next();

private:
    void startOver();
    std::uint64_t lastStep() const;
    double counted(std::size_t column) const;

    Recording const* recording_;
    std::size_t first_;
    bool isEndless_;
    std::size_t row_;
    std::uint64_t shift_ = 0;    // ms added to the recorded times
    std::vector<double> raises_; // by column: added to the recorded numbers
};

/// Which rows are replayed.
struct RowSelection {
    std::vector<std::size_t> firstRows; ///< by recording, from 0; recordings without an entry start at row 0
    std::optional<std::uint64_t> rowLimit; ///< rows of all recordings together
    bool isEndless = false;                ///< restart each recording after its last row
};

/// The rows of all recordings. The recordings start together, each on its own clock; the row that is due first is
/// next. Of rows that are due at the same time, that of the earlier recording is next.
///
/// Threads: reentrant.
class MergedRows {
public:
    /// A row and the index of its recording.
    struct Step {
        std::size_t recording = 0;
        Row row;
    };

    /// @param recordings must outlive the object
    MergedRows(Recordings const& recordings, RowSelection const& selection);

    /// Time of a recording's first row, ms since 1970 UTC.
    std::uint64_t startTime(std::size_t recording) const { return rows_.at(recording).startTime(); }

    /// When the next row is due, in ms after the start; nothing after the last row.
    std::optional<std::uint64_t> due() const;

    /// Takes the next row; there must be one.
    Step next();

    /// Whether the limit is the reason that there is no next row.
    bool isStopped() const;

    /// Number of rows there are without a limit; none if they repeat.
    std::optional<std::uint64_t> total() const { return total_; }

private:
    std::size_t earliest() const;

    std::vector<RecordingRows> rows_;       // by recording
    std::optional<std::uint64_t> rowsLeft_; // none: no limit
    std::optional<std::uint64_t> total_;    // none: endless
};

} // namespace qel::tools
