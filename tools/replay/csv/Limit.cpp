// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Limit.h"

namespace qel::tools {

namespace {

bool reachesHigh(std::optional<double> const& threshold, double hysteresis, bool holds, double value) {
    return threshold && (holds ? value >= *threshold - hysteresis : value >= *threshold);
}

bool reachesLow(std::optional<double> const& threshold, double hysteresis, bool holds, double value) {
    return threshold && (holds ? value <= *threshold + hysteresis : value <= *threshold);
}

} // namespace

eStatus_Bits LimitState::update(double value) {
    highAlarm_ = reachesHigh(limit_.highAlarm, limit_.hysteresis, highAlarm_, value);
    highWarning_ = reachesHigh(limit_.highWarning, limit_.hysteresis, highWarning_, value);
    lowWarning_ = reachesLow(limit_.lowWarning, limit_.hysteresis, lowWarning_, value);
    lowAlarm_ = reachesLow(limit_.lowAlarm, limit_.hysteresis, lowAlarm_, value);
    if (highAlarm_) {
        return eStatus_HighAlarm;
    }
    if (lowAlarm_) {
        return eStatus_LowAlarm;
    }
    if (highWarning_) {
        return eStatus_HighWarning;
    }
    return lowWarning_ ? eStatus_LowWarning : eStatus_NoError;
}

} // namespace qel::tools
