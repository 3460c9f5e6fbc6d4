// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Limits.h"

#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

#include <string>
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

constexpr InputPlace place{"--limit"};

std::string failureOf(std::string const& text) {
    LimitSet sut;
    return test::inputFailure([&] { sut.add(text, place); });
}

std::string const grammar =
    "COLUMN:SETTING=NUMBER[,...] with high-alarm, high-warning, low-warning, low-alarm, hysteresis";

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

TEST(LimitSetTest, Add_ReadsAllSettings) {
    LimitSet sut;

    sut.add("inlet1_voltage_V:high-alarm=253,low-alarm=207.5,high-warning=250,hysteresis=0.5,low-warning=210",
            place);

    auto const* const limit = sut.find("inlet1_voltage_V");
    ASSERT_NE(nullptr, limit);
    EXPECT_EQ(253.0, limit->highAlarm);
    EXPECT_EQ(250.0, limit->highWarning);
    EXPECT_EQ(210.0, limit->lowWarning);
    EXPECT_EQ(207.5, limit->lowAlarm);
    EXPECT_EQ(0.5, limit->hysteresis);
}

TEST(LimitSetTest, Add_LeavesOutWhatIsNotSet) {
    LimitSet sut;

    sut.add(" inlet1_voltage_V : high-alarm = 253 ", place);

    auto const* const limit = sut.find("inlet1_voltage_V");
    ASSERT_NE(nullptr, limit);
    EXPECT_EQ(253.0, limit->highAlarm);
    EXPECT_EQ(std::nullopt, limit->highWarning);
    EXPECT_EQ(std::nullopt, limit->lowWarning);
    EXPECT_EQ(std::nullopt, limit->lowAlarm);
    EXPECT_EQ(0.0, limit->hysteresis);
}

TEST(LimitSetTest, Find_KnowsOnlyWhatWasAdded) {
    LimitSet sut;
    sut.add("inlet1_voltage_V:high-alarm=253", place);

    EXPECT_EQ(nullptr, sut.find("inlet1_current_A"));
}

TEST(LimitSetTest, NoLimit_IsRefused) {
    EXPECT_EQ("--limit: \"inlet1_voltage_V\" is not a limit; expected " + grammar,
              failureOf("inlet1_voltage_V"));
    EXPECT_EQ("--limit: \"\" is not a limit; expected " + grammar, failureOf(""));
}

TEST(LimitSetTest, UnknownColumn_IsRefused) {
    EXPECT_EQ("--limit: unknown column \"inlet1_charm\"; expected " + std::string(columnGrammar),
              failureOf("inlet1_charm:high-alarm=1"));
}

TEST(LimitSetTest, SettingWithoutNumber_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: \"high-alarm\" is not a setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:high-alarm"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is not a setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is not a setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:high-alarm=1,"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is not a number; expected a decimal number",
              failureOf("inlet1_voltage_V:high-alarm="));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"x\" is not a number; expected a decimal number",
              failureOf("inlet1_voltage_V:high-alarm=x"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"nan\" is not a number; expected a decimal number",
              failureOf("inlet1_voltage_V:hysteresis=nan,high-alarm=1"));
}

TEST(LimitSetTest, UnknownSetting_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: unknown setting \"high\"; expected high-alarm, high-warning, "
              "low-warning, "
              "low-alarm or hysteresis",
              failureOf("inlet1_voltage_V:high=1"));
}

TEST(LimitSetTest, SettingThatIsThereTwice_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: \"high-alarm\" is set twice; expected each setting once",
              failureOf("inlet1_voltage_V:high-alarm=1,high-alarm=1"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"hysteresis\" is set twice; expected each setting once",
              failureOf("inlet1_voltage_V:high-alarm=1,hysteresis=0,hysteresis=0"));
}

TEST(LimitSetTest, LimitWithoutThreshold_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: no threshold; expected " + grammar,
              failureOf("inlet1_voltage_V:hysteresis=1"));
}

TEST(LimitSetTest, NegativeHysteresis_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: hysteresis=-0.5 is negative; expected a hysteresis of 0 or more",
              failureOf("inlet1_voltage_V:high-alarm=1,hysteresis=-0.5"));
}

TEST(LimitSetTest, WarningBeyondItsAlarm_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: high-warning=3 is above high-alarm=2; expected high-warning "
              "at or below high-alarm",
              failureOf("inlet1_voltage_V:high-alarm=2,high-warning=3"));
    EXPECT_EQ("--limit: inlet1_voltage_V: low-alarm=3 is above low-warning=2; expected low-alarm at or "
              "below low-warning",
              failureOf("inlet1_voltage_V:low-alarm=3,low-warning=2"));
}

TEST(LimitSetTest, WarningAtItsAlarm_IsFine) {
    EXPECT_EQ(
        "no InputError",
        failureOf("inlet1_voltage_V:high-alarm=2,high-warning=2,low-warning=1,low-alarm=1,hysteresis=0.9"));
}

TEST(LimitSetTest, LowNotBelowHighByMoreThanTheHysteresis_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: the low threshold 5 and the high threshold 4 are too close; "
              "expected low thresholds below high ones by more than hysteresis=0",
              failureOf("inlet1_voltage_V:high-alarm=4,low-alarm=5"));
    EXPECT_EQ("--limit: inlet1_voltage_V: the low threshold 2 and the high threshold 4 are too close; "
              "expected low thresholds below high ones by more than hysteresis=2",
              failureOf("inlet1_voltage_V:high-warning=4,low-warning=2,hysteresis=2"));
    EXPECT_EQ("no InputError", failureOf("inlet1_voltage_V:high-warning=4,low-warning=2,hysteresis=1.9"));
}

TEST(LimitSetTest, SecondLimitOfAColumn_IsRefused) {
    LimitSet sut;
    sut.add("inlet1_voltage_V:high-alarm=253", place);

    EXPECT_EQ("--limit: inlet1_voltage_V: the column already has a limit; expected one limit per column",
              test::inputFailure([&] { sut.add("inlet1_voltage_V:low-alarm=200", place); }));
}

TEST(LimitSetTest, File_HasALimitALineAndComments) {
    test::TempFile const file("# limits\n\n  inlet1_voltage_V:high-alarm=253  # nominal + 10 %\r\n\t\n"
                              "inlet1_current_A:high-warning=16");
    LimitSet sut;

    sut.addFile(file.path());

    ASSERT_NE(nullptr, sut.find("inlet1_voltage_V"));
    EXPECT_EQ(253.0, sut.find("inlet1_voltage_V")->highAlarm);
    ASSERT_NE(nullptr, sut.find("inlet1_current_A"));
    EXPECT_EQ(16.0, sut.find("inlet1_current_A")->highWarning);
}

TEST(LimitSetTest, File_NamesTheLineOfWhatIsWrong) {
    test::TempFile const file("# limits\ninlet1_voltage_V:high-alarm=253\n\ninlet1_current_A:high-alarm=x\n");
    LimitSet sut;

    EXPECT_EQ(file.path() + ":4: inlet1_current_A: \"x\" is not a number; expected a decimal number",
              test::inputFailure([&] { sut.addFile(file.path()); }));
}

TEST(LimitSetTest, FileThatCannotBeRead_IsRefused) {
    LimitSet sut;
    EXPECT_EQ(
        "/tmp/there/is/no: cannot be read (No such file or directory); expected a readable file of limits",
        test::inputFailure([&] { sut.addFile("/tmp/there/is/no"); }));
    EXPECT_EQ("/tmp: cannot be read (Is a directory); expected a readable file of limits",
              test::inputFailure([&] { sut.addFile("/tmp"); }));
}

TEST(LimitSetTest, ColumnThatNoRecordingHas_IsRefused) {
    test::TempFile const recording("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n");
    test::TempFile const file("inlet1_voltage_V:high-alarm=253\ninlet1_current_A:high-alarm=16\n");
    LimitSet sut;
    sut.addFile(file.path());

    EXPECT_EQ(file.path() +
                  ":2: inlet1_current_A: no recording has this column; expected a column of the FILEs",
              test::inputFailure([&] { sut.checkColumns({Recording::read(recording.path())}); }));
}

TEST(LimitSetTest, EndlessLine_IsRefused) {
    LimitSet sut;
    EXPECT_EQ("/dev/zero:1: the line has more than 4096 bytes; expected one limit per line",
              test::inputFailure([&] { sut.addFile("/dev/zero"); }));
}

} // namespace qel::tools
