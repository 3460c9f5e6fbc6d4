// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What happened during a capture.
#pragma once

#include "inspect/capture/CaptureTimeline.h"
#include "inspect/compare/Difference.h"
#include "inspect/naming/ValuePattern.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace qel::inspect {

/// What a capture shows from one sample to a later one.
struct CaptureEvent {
    enum class Kind : std::uint8_t {
        Inactive, ///< the region was active and is not any more: its writer has ended, or it was made anew
        Restart,  ///< a writing process has made the region anew and active
        Gap,      ///< there is no sample for much longer than usual
        Change,   ///< see difference
    };

    std::uint64_t time = 0; ///< ms since 1970 UTC; of a gap: of the sample behind it
    Kind kind = Kind::Change;
    std::uint64_t gap = 0; ///< length of a gap in ms
    std::optional<Difference>
        difference; ///< of a change; neither a number nor the region's version or activity
};

/// "inactive", "restart", "gap", or the kind of the difference. Reentrant.
char const* eventName(CaptureEvent const& event);

/// Finds changes of states and structure, restarts of the writer and gaps (see CaptureTimeline::longestPause()). While the region is not active nothing is compared; the next
/// active sample is compared with the last one.
///
/// Threads: reentrant.
class CaptureLog {
public:
    /// Takes the events in the order of time.
    using Handler = std::function<void(CaptureEvent const&)>;

    /// @param patterns select points and values; without any, everything. Events of the whole region are always
    ///                 selected, except for its global state.
    explicit CaptureLog(ValuePatterns patterns) : patterns_(std::move(patterns)) {}

    /// Reads a capture.
    /// @param from  ms since 1970 UTC; events before are left out
    /// @param until ms since 1970 UTC; events after are left out
    /// @throws CaptureError if the file cannot be read any more
    void read(CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
              Handler const& handler) const;

    /// Finds a pattern that selects no point and no value in a part of a capture, nor in the active sample before. Reads
    /// only as far as needed.
    /// @param from  ms since 1970 UTC
    /// @param until ms since 1970 UTC
    /// @return the index of the first one; none if each pattern selects something
    /// @throws CaptureError if the file cannot be read any more
    std::optional<std::size_t> unmatched(CaptureTimeline const& timeline, std::uint64_t from,
                                         std::uint64_t until) const;

private:
    bool isSelected(Difference const& difference) const;

    ValuePatterns patterns_;
};

} // namespace qel::inspect
