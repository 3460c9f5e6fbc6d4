// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Durations.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <gtest/gtest.h>

namespace qel::tools {

using std::chrono::milliseconds;

TEST(DurationsTest, ParseDuration_TakesSecondsAndUnits) {
    EXPECT_EQ(milliseconds(10000), parseDuration("10"));
    EXPECT_EQ(milliseconds(10000), parseDuration("10s"));
    EXPECT_EQ(milliseconds(1500), parseDuration("1.5"));
    EXPECT_EQ(milliseconds(300000), parseDuration("5m"));
    EXPECT_EQ(milliseconds(7200000), parseDuration("2h"));
    EXPECT_EQ(milliseconds(43200000), parseDuration("0.5d"));
    EXPECT_EQ(milliseconds(250), parseDuration("250ms"));
    EXPECT_EQ(milliseconds(0), parseDuration("0"));
}

TEST(DurationsTest, ParseDuration_RefusesOtherTexts) {
    for (auto const* const text : {"", "s", "10 s", "10x", "-1", "-0", "nan", "inf", "infs", "1e3", "+5",
                                   "5mm", "1000000000000000d", "0x10"}) {
        EXPECT_EQ(std::nullopt, parseDuration(text)) << text;
    }
}

TEST(DurationsTest, DurationUpTo_SaysWhatIsAccepted) {
    auto const sut = durationUpTo(std::chrono::hours(1));
    EXPECT_EQ("", sut("60m"));
    EXPECT_EQ("\"61m\" is not a duration of up to 3600 s; durations are like 10, 10s, 5m, 2h", sut("61m"));
    EXPECT_EQ("\"nan\" is not a duration of up to 3600 s; durations are like 10, 10s, 5m, 2h", sut("nan"));
}

} // namespace qel::tools
