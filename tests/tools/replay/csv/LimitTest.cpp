// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Limit.h"

#include <gtest/gtest.h>

#include <vector>

namespace qel::tools {

namespace {

constexpr double highAlarm = 8.0;
constexpr double highWarning = 6.0;
constexpr double lowWarning = 3.0;
constexpr double lowAlarm = 1.0;

// Whether a threshold holds after some values: it was reached once, and the value has not come back by more
// than the hysteresis since.
bool holds(std::vector<double> const& values, double threshold, double hysteresis, bool isHigh) {
    for (auto reached = values.rbegin(); reached != values.rend(); ++reached) {
        double const beyond = isHigh ? *reached - threshold : threshold - *reached;
        if (beyond >= 0.0) {
            return true;
        }
        if (beyond < -hysteresis) {
            return false;
        }
    }
    return false;
}

eStatus_Bits model(Limit const& limit, std::vector<double> const& values) {
    if (limit.highAlarm && holds(values, *limit.highAlarm, limit.hysteresis, true)) {
        return eStatus_HighAlarm;
    }
    if (limit.lowAlarm && holds(values, *limit.lowAlarm, limit.hysteresis, false)) {
        return eStatus_LowAlarm;
    }
    if (limit.highWarning && holds(values, *limit.highWarning, limit.hysteresis, true)) {
        return eStatus_HighWarning;
    }
    if (limit.lowWarning && holds(values, *limit.lowWarning, limit.hysteresis, false)) {
        return eStatus_LowWarning;
    }
    return eStatus_NoError;
}

Limit limitOf(unsigned thresholds, double hysteresis) {
    Limit limit;
    if ((thresholds & 1U) != 0) {
        limit.highAlarm = highAlarm;
    }
    if ((thresholds & 2U) != 0) {
        limit.highWarning = highWarning;
    }
    if ((thresholds & 4U) != 0) {
        limit.lowWarning = lowWarning;
    }
    if ((thresholds & 8U) != 0) {
        limit.lowAlarm = lowAlarm;
    }
    limit.hysteresis = hysteresis;
    return limit;
}

} // namespace

// All runs of four values from 0 to 9, all sets of thresholds, three hystereses.
TEST(LimitTest, State_FollowsTheRuleForEveryRunOfValues) {
    constexpr unsigned runs = 10000;
    for (unsigned thresholds = 0; thresholds < 16; ++thresholds) {
        for (double const hysteresis : {0.0, 1.0, 2.0}) {
            auto const limit = limitOf(thresholds, hysteresis);
            for (unsigned run = 0; run < runs; ++run) {
                LimitState sut(limit);
                std::vector<double> values;
                for (unsigned digits = run; values.size() < 4; digits /= 10) {
                    values.push_back(digits % 10);
                    ASSERT_EQ(model(limit, values), sut.update(values.back()))
                        << "thresholds " << thresholds << ", hysteresis " << hysteresis << ", run " << run;
                }
            }
        }
    }
}

TEST(LimitTest, Threshold_IsCrossedWhereItIsReached) {
    LimitState high(limitOf(1, 0.0));
    EXPECT_EQ(eStatus_NoError, high.update(7.999));
    EXPECT_EQ(eStatus_HighAlarm, high.update(8.0));
    EXPECT_EQ(eStatus_NoError, high.update(7.999));
    LimitState low(limitOf(4, 0.0));
    EXPECT_EQ(eStatus_NoError, low.update(3.001));
    EXPECT_EQ(eStatus_LowWarning, low.update(3.0));
    EXPECT_EQ(eStatus_NoError, low.update(3.001));
}

TEST(LimitTest, Hysteresis_KeepsTheStateUntilTheValueIsBackByMore) {
    LimitState sut(limitOf(2, 0.5));
    EXPECT_EQ(eStatus_HighWarning, sut.update(6.0));
    EXPECT_EQ(eStatus_HighWarning, sut.update(5.5));
    EXPECT_EQ(eStatus_NoError, sut.update(5.499));
    EXPECT_EQ(eStatus_NoError, sut.update(5.999)) << "a cleared threshold must be reached again";
}

TEST(LimitTest, AlarmThatClears_FallsBackToTheWarning) {
    LimitState sut(limitOf(3, 1.0));
    EXPECT_EQ(eStatus_HighAlarm, sut.update(9.0));
    EXPECT_EQ(eStatus_HighAlarm, sut.update(7.0));
    EXPECT_EQ(eStatus_HighWarning, sut.update(6.9));
    EXPECT_EQ(eStatus_HighWarning, sut.update(5.0));
    EXPECT_EQ(eStatus_NoError, sut.update(4.9));
}

} // namespace qel::tools
