// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WaitCommand.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/replay/QelReplayProcess.h"
#include "tests/tools/replay/ShippedRecordings.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

namespace {

/// An inlet whose power is above a limit a second after the start.
class WaitCommandTest : public testing::Test {
protected:
    TempFile const file_{"timestamp_utc,inlet1_active_power_W\n2023-06-09T07:34:30Z,100\n"
                         "2023-06-09T07:34:32Z,1000\n"};
    QelReplayProcess replay_{
        {"--speed", "2", "--hold", "--limit", "inlet1_active_power_W:high-alarm=900", file_.path()}};
};

} // namespace

TEST_F(WaitCommandTest, ConditionThatComesTrue_IsPrinted) {
    auto const outcome = runQelshm({"wait", "unit1:state=alarm", "--timeout", "30"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("unit1  Child Alarm\n", outcome.output);
    EXPECT_EQ("2023-06-09T07:34:32Z  unit1/inlet1  Active Power  1000.0 W  High Alarm\n",
              runQelshm({"wait", "unit1:state=lost", "unit1/**:active-power>999"}).output);
}

TEST_F(WaitCommandTest, Json_HasWhatMetTheCondition) {
    auto const outcome = runQelshm({"wait", "--json", "unit1/inlet1:active-power>999", "--timeout", "30s"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(true, document.at("met"));
    EXPECT_EQ("unit1/inlet1:active-power>999", document.at("condition"));
    EXPECT_EQ("unit1/inlet1", document.at("point").at("path"));
    EXPECT_EQ(1000.0, document.at("value").at("number"));
}

TEST_F(WaitCommandTest, TimeThatIsOver_IsStatusOne) {
    ASSERT_TRUE(replay_.readUntil("region active"));
    auto const outcome = runQelshm({"wait", "--json", "unit1/inlet1:active-power<0", "--timeout", "300ms"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: no condition was met in time\n", outcome.errors);
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(false, document.at("met"));
    EXPECT_TRUE(document.at("condition").is_null());
    EXPECT_GE(document.at("elapsedMs"), 300);
}

TEST_F(WaitCommandTest, NameOfNothing_IsToldOnceAndWaitedFor) {
    ASSERT_TRUE(replay_.readUntil("region active"));
    auto const outcome = runQelshm({"wait", "unit1/inlet9:state=alarm", "unit1/inlet1:current>1",
                                    "unit1/inlet1:active-power<0", "unit1/**:state=lost", "structure",
                                    "--timeout", "300ms", "--interval", "0.05"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: nothing has the name in \"unit1/inlet9:state=alarm\" yet; waiting for it\n"
              "qelshm: nothing has the name in \"unit1/inlet1:current>1\" yet; waiting for it\n"
              "qelshm: no condition was met in time\n",
              outcome.errors);
}

TEST(WaitCommandRegionTest, ActiveRegion_IsWaitedFor) {
    ChildProcess sut({QELSHM, "wait", "active", "--timeout", "30", "--interval", "0.05"});
    TempFile const file("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n");
    QelReplayProcess const replay({"--speed", "0", "--hold", file.path()});
    EXPECT_EQ("active: 2 points, 1 values\n", sut.readAll());
    EXPECT_EQ(0, sut.wait());
}

TEST(WaitCommandRegionTest, ChangeOfStructure_IsWaitedFor) {
    QelReplayProcess replay({"--speed", "20", "--loop", "--plug-after", "60", outletsFile, environmentFile});
    ASSERT_TRUE(replay.readUntil("region active"));
    auto const outcome = runQelshm({"wait", "structure", "--timeout", "30"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("^structure changed: [0-9]+ points, [0-9]+ values\n$"));
}

TEST(WaitCommandRegionTest, WithoutARegion_TheReasonIsTold) {
    auto const outcome = runQelshm({"wait", "active", "--timeout", "0"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: no condition was met in time: there is no shared-memory object QelSharedMemory\n",
              outcome.errors);
}

TEST(WaitCommandRegionTest, WrongUsage_IsStatusTwo) {
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"wait"},
                                               {"wait", "unit1"},
                                               {"wait", "unit1:state>on"},
                                               {"wait", "active", "--timeout", "nan"},
                                               {"wait", "active", "--interval", "inf"},
                                               {"wait", "active", "--image", "x"}}) {
        EXPECT_EQ(2, runQelshm(arguments).status);
    }
}

} // namespace qel::test
