// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Several recordings side by side, each on its own clock.
#pragma once

#include "tools/replay/csv/Recordings.h"
#include "tools/replay/csv/RowSource.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::tools {

/// Merges the rows of all recordings: they start together, and the row that comes first on its recording's
/// clock is next; of rows due at the same moment, the one of the recording named first.
///
/// Threads: not shared without care.
class Replayer {
public:
    struct Options {
        std::vector<std::size_t>
            firstRows; ///< by recording, from 0; recordings without an entry start at row 0
        std::optional<std::uint64_t> rowLimit; ///< rows of all recordings together
        bool isEndless = false;                ///< start each recording over when it has ended
    };

    struct Step {
        std::size_t recording = 0; ///< index
        Row row;
    };

    /// @param recordings must outlive the replayer
    Replayer(Recordings const& recordings, Options const& options);

    /// Time of a recording's first row, ms since 1970 UTC.
    std::uint64_t startTime(std::size_t recording) const { return sources_.at(recording).startTime(); }

    /// When the next row is due, in ms since the start; nothing after the last row.
    std::optional<std::uint64_t> due() const;

    /// Takes the next row; there must be one.
    Step next();

private:
    std::size_t earliest() const;

    std::vector<RowSource> sources_;
    std::optional<std::uint64_t> rowsLeft_; // none: no limit
};

} // namespace qel::tools
