// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Limits of a value and the state they give it.
#pragma once

#include "domain/eStatus_Bits.h"

#include <optional>

namespace qel::tools {

/// Thresholds of one value, in its column's unit. Each may be missing.
struct Limit {
    std::optional<double> highAlarm;
    std::optional<double> highWarning;
    std::optional<double> lowWarning;
    std::optional<double> lowAlarm;
    double hysteresis = 0.0; ///< how far a value must come back before its state clears
};

/// The state of a value under a limit. A threshold is crossed when the value reaches it, and holds until the
/// value has come back by more than the hysteresis.
///
/// Threads: not shared without care.
class LimitState {
public:
    /// @param limit low thresholds below high ones, by more than the hysteresis; warnings not beyond alarms
    explicit LimitState(Limit const& limit) : limit_(limit) {}

    /// Takes the next value. Of several thresholds that hold, an alarm wins.
    /// @return High Alarm, Low Alarm, High Warning, Low Warning or No Error
    eStatus_Bits update(double value);

private:
    Limit limit_;
    bool highAlarm_ = false;
    bool highWarning_ = false;
    bool lowWarning_ = false;
    bool lowAlarm_ = false;
};

} // namespace qel::tools
