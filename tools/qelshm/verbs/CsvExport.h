// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values of a capture as CSV.
#pragma once

#include "tools/qelshm/verbs/CaptureArguments.h"

#include "inspect/capture/CaptureTimeline.h"
#include "inspect/capture/SelectedValues.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

enum class CsvLayout : std::uint8_t {
    Wide, ///< a row for each time: timestamp_utc, then a column for each value, "unit1/inlet1:active-power (W)"
    Long, ///< a row for each time and value: timestamp_utc, name, number, unit, state
};

/// An export would have more rows than anybody can use; what() is one line for the user.
class TooManyRowsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Makes rows of a capture's samples. A time for which the capture has no sample (see
/// inspect::CaptureTimeline::longestPause()) has only empty cells.
///
/// Threads: reentrant.
class CsvExport {
public:
    using Values = std::vector<inspect::SelectedValues::Name>;

    /// How many rows there may be with an interval.
    static constexpr std::uint64_t mostRows = 100000000;

    /// Takes the next piece of text.
    using Output = std::function<void(std::string_view text)>;

    /// @param patterns that select the values
    /// @param values   what they select in the range: the columns in their order
    /// @param interval ms between two rows, at least 1; none: a row for each sample
    CsvExport(std::vector<inspect::ValuePattern> patterns, Values values, CsvLayout layout,
              std::optional<std::uint64_t> interval);

    /// @throws TooManyRowsError before anything is written
    /// @throws inspect::CaptureError if the capture cannot be read any more
    void write(inspect::CaptureTimeline const& timeline, CaptureRange const& range,
               Output const& output) const;

private:
    std::string header() const;
    std::string rows(std::uint64_t time, inspect::SelectedValues const* selected) const;
    std::string longRows(std::uint64_t time, inspect::SelectedValues const* selected) const;

    std::vector<inspect::ValuePattern> patterns_;
    Values values_;
    CsvLayout layout_;
    std::optional<std::uint64_t> interval_;
};

} // namespace qel::tools
