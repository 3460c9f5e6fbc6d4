// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Turns the rows of one recording into values of the unit.
#pragma once

#include "tools/replay/csv/ComputedValues.h"
#include "tools/replay/csv/Limits.h"
#include "tools/replay/csv/Recording.h"
#include "tools/replay/csv/Rows.h"
#include "tools/replay/unit/Structure.h"

#include "domain/eStatus_Bits.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// The state of a column with a limit has changed.
struct Crossing {
    std::string column;
    eStatus_Bits before;
    Reading after;
    bool isLoss; ///< the reading was lost, or came back within the same limits: no limit was crossed
};

/// What one row results in.
struct RowReadings {
    std::vector<Reading> readings;
    std::vector<Crossing> crossings;
    std::size_t missing = 0; ///< number of empty cells
};

/// Each column feeds one value. Computed values are fed too: the energy of each active and apparent power without a
/// recorded counter, the sum of the active powers of each circuit and of the socket group if the recording has all
/// their outlets, and the dew point of a sensor. A value without a reading keeps its last number (0 before the first)
/// and is Lost. A sum adds the numbers that its outlets show, and is Lost if one of them is.
///
/// Threads: reentrant.
class RecordingFeed {
public:
    /// @param recording one of the recordings
    /// @param recordings all of them: a power and its energy counter may be recorded in different files
    RecordingFeed(Recording const& recording, Recordings const& recordings, LimitSet const& limits);

    /// Every value that the recording feeds.
    std::vector<ValueId> values() const;

    /// Whether one of them belongs to the point.
    bool feeds(PointId const& point) const;

    RowReadings convert(Row const& row);

private:
    /// A value with its last number, which it keeps while there is no reading.
    struct Output {
        ValueId value{};
        double number = 0.0;

        Reading give(std::optional<double> const& reading, std::uint64_t time,
                     eStatus_Bits state = eStatus_NoError);
    };

    struct Energy {
        Output output;
        EnergyCounter counter;
    };

    struct ColumnFeed {
        std::string name;
        Output output;
        std::optional<LimitState> limit;
        eStatus_Bits state = eStatus_NoError;   // of the last row
        eStatus_Bits limited = eStatus_NoError; // of the last reading
        std::optional<Energy> energy;
    };

    /// Active power of several sockets.
    struct Sum {
        Output output;
        std::vector<std::size_t> columns; // of the outlets
    };

    struct DewPointFeed {
        Output output;
        std::size_t temperature = 0; // columns
        std::size_t humidity = 0;
    };

    void addColumn(Column const& column, Recordings const& recordings, LimitSet const& limits);
    void addSum(Recording const& recording, PointId const& point, std::vector<unsigned> const& outlets);
    void addDewPoint(Recording const& recording, Column const& column);
    static void convertCell(ColumnFeed& feed, std::optional<double> const& cell, std::uint64_t time,
                            RowReadings& result);

    std::vector<ColumnFeed> columns_;
    std::vector<Sum> sums_;
    std::vector<DewPointFeed> dewPoints_;
};

} // namespace qel::tools
