// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Limits of values: what they are, how they are set, and the states they give.
#pragma once

#include "tools/replay/csv/InputError.h"
#include "tools/replay/csv/Recording.h"

#include "domain/eStatus_Bits.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

/// Thresholds of one value, in its column's unit; each is optional.
struct Limit {
    std::optional<double> highAlarm;
    std::optional<double> highWarning;
    std::optional<double> lowWarning;
    std::optional<double> lowAlarm;
    double hysteresis = 0.0; ///< how far a value must return before its state clears
};

/// The state of a value under a limit. A value that reaches a threshold takes its state, and keeps it until the value
/// has returned by more than the hysteresis.
///
/// Threads: reentrant.
class LimitState {
public:
    /// @param limit low thresholds must be below high ones by more than the hysteresis, and warnings not beyond alarms
    explicit LimitState(Limit const& limit) : limit_(limit) {}

    /// Takes the next value. Alarms take precedence over warnings.
    /// @return High Alarm, Low Alarm, High Warning, Low Warning or No Error
    eStatus_Bits update(double value);

private:
    Limit limit_;
    bool highAlarm_ = false;
    bool highWarning_ = false;
    bool lowWarning_ = false;
    bool lowAlarm_ = false;
};

/// Limits by column, read from text such as
/// "outlet6_active_power_W:high-alarm=2500,high-warning=2000,hysteresis=50". The settings are high-alarm, high-warning,
/// low-warning, low-alarm and hysteresis, in any order, each at most once, and at least one threshold.
///
/// Threads: reentrant.
class LimitSet {
public:
    /// Reads one limit.
    /// @param place of the text, for messages
    /// @throws InputError if the text is not a limit, a column or setting is unknown or set twice, a low threshold is not
    ///         below a high one by more than the hysteresis, a warning is beyond its alarm, or the hysteresis is negative
    void add(std::string_view text, InputPlace const& place);

    /// Reads a file with one limit per line; '#' starts a comment, empty lines are ignored.
    /// @throws InputError as add(), if the file cannot be read or a line has more than 4096 bytes
    void addFile(std::string const& path);

    /// @throws InputError if no recording has a limit's column
    void checkColumns(std::vector<Recording> const& recordings) const;

    /// The limit of a column, null if it has none.
    Limit const* find(std::string_view column) const;

private:
    struct Entry {
        std::string column;
        Limit limit;
        std::string file; // where it was set
        std::size_t line;
    };

    std::vector<Entry> entries_;
};

} // namespace qel::tools
