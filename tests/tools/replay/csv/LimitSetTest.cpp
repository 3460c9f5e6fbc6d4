// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/LimitSet.h"

#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::tools {

namespace {

constexpr InputPlace place{"--limit"};

std::string failureOf(std::string const& text) {
    LimitSet sut;
    return test::inputFailure([&] { sut.add(text, place); });
}

std::string const grammar =
    "COLUMN:SETTING=NUMBER[,...] with high-alarm, high-warning, low-warning, low-alarm, hysteresis";

} // namespace

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
    EXPECT_EQ("--limit: \"inlet1_voltage_V\" is no limit; expected " + grammar,
              failureOf("inlet1_voltage_V"));
    EXPECT_EQ("--limit: \"\" is no limit; expected " + grammar, failureOf(""));
}

TEST(LimitSetTest, UnknownColumn_IsRefused) {
    EXPECT_EQ("--limit: unknown column \"inlet1_charm\"; expected " + std::string(columnGrammar),
              failureOf("inlet1_charm:high-alarm=1"));
}

TEST(LimitSetTest, SettingWithoutNumber_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: \"high-alarm\" is no setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:high-alarm"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is no setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is no setting; expected SETTING=NUMBER",
              failureOf("inlet1_voltage_V:high-alarm=1,"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"\" is no number; expected a decimal number",
              failureOf("inlet1_voltage_V:high-alarm="));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"x\" is no number; expected a decimal number",
              failureOf("inlet1_voltage_V:high-alarm=x"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"nan\" is no number; expected a decimal number",
              failureOf("inlet1_voltage_V:hysteresis=nan,high-alarm=1"));
}

TEST(LimitSetTest, UnknownSetting_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: unknown setting \"high\"; expected high-alarm, high-warning, "
              "low-warning, "
              "low-alarm or hysteresis",
              failureOf("inlet1_voltage_V:high=1"));
}

TEST(LimitSetTest, SettingThatIsThereTwice_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: \"high-alarm\" is set twice; expected it once",
              failureOf("inlet1_voltage_V:high-alarm=1,high-alarm=1"));
    EXPECT_EQ("--limit: inlet1_voltage_V: \"hysteresis\" is set twice; expected it once",
              failureOf("inlet1_voltage_V:high-alarm=1,hysteresis=0,hysteresis=0"));
}

TEST(LimitSetTest, LimitWithoutThreshold_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: there is no threshold; expected " + grammar,
              failureOf("inlet1_voltage_V:hysteresis=1"));
}

TEST(LimitSetTest, NegativeHysteresis_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: hysteresis=-0.5 is negative; expected a hysteresis of 0 or more",
              failureOf("inlet1_voltage_V:high-alarm=1,hysteresis=-0.5"));
}

TEST(LimitSetTest, WarningBeyondItsAlarm_IsRefused) {
    EXPECT_EQ("--limit: inlet1_voltage_V: high-warning=3 is above high-alarm=2; expected it not above",
              failureOf("inlet1_voltage_V:high-alarm=2,high-warning=3"));
    EXPECT_EQ("--limit: inlet1_voltage_V: low-alarm=3 is above low-warning=2; expected it not above",
              failureOf("inlet1_voltage_V:low-alarm=3,low-warning=2"));
}

TEST(LimitSetTest, WarningAtItsAlarm_IsFine) {
    EXPECT_EQ(
        "no InputError",
        failureOf("inlet1_voltage_V:high-alarm=2,high-warning=2,low-warning=1,low-alarm=1,hysteresis=0.9"));
}

TEST(LimitSetTest, LowNotBelowHighByMoreThanTheHysteresis_IsRefused) {
    EXPECT_EQ(
        "--limit: inlet1_voltage_V: the low threshold 5 is not below the high threshold 4 by more than the "
        "hysteresis; expected low thresholds below high ones by more than hysteresis=0",
        failureOf("inlet1_voltage_V:high-alarm=4,low-alarm=5"));
    EXPECT_EQ(
        "--limit: inlet1_voltage_V: the low threshold 2 is not below the high threshold 4 by more than the "
        "hysteresis; expected low thresholds below high ones by more than hysteresis=2",
        failureOf("inlet1_voltage_V:high-warning=4,low-warning=2,hysteresis=2"));
    EXPECT_EQ("no InputError", failureOf("inlet1_voltage_V:high-warning=4,low-warning=2,hysteresis=1.9"));
}

TEST(LimitSetTest, SecondLimitOfAColumn_IsRefused) {
    LimitSet sut;
    sut.add("inlet1_voltage_V:high-alarm=253", place);

    EXPECT_EQ("--limit: inlet1_voltage_V: the column has a limit already; expected one limit for each column",
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

    EXPECT_EQ(file.path() + ":4: inlet1_current_A: \"x\" is no number; expected a decimal number",
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
                  ":2: inlet1_current_A: the column stands in none of the recordings; expected a column of "
                  "the files to replay",
              test::inputFailure([&] { sut.checkColumns({CsvTable::read(recording.path())}); }));
}

} // namespace qel::tools
