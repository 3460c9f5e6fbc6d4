// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/HzCommand.h"

#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/replay/QelReplayProcess.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

TEST(HzCommandTest, ValuesThatChange_HaveARate) {
    TempFile const rows(
        "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:31Z,231\n");
    QelReplayProcess replay({"--speed", "10", "--loop", rows.path()});
    ASSERT_TRUE(replay.readUntil("region active"));
    auto const outcome = runQelshm({"hz", "--json", "--duration", "1", "--interval", "0.01"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    ASSERT_EQ(1U, document.at("rates").size());
    EXPECT_GT(document.at("rates").at(0).at("updates"), 1);
    EXPECT_EQ("unit1/inlet1", document.at("rates").at(0).at("path"));
    auto const text = runQelshm({"hz", "--duration", "0.1"}).output;
    EXPECT_THAT(text, testing::ContainsRegex("\nunit1/inlet1 +Voltage +[0-9]+ +[0-9.]+ +"));
}

TEST(HzCommandTest, ValueThatChangesAtEveryLook_MayChangeMoreOften) {
    TempFile const rows(
        "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:31Z,231\n");
    QelReplayProcess replay({"--speed", "100", "--loop", rows.path()});
    ASSERT_TRUE(replay.readUntil("region active"));
    auto const outcome = runQelshm({"hz", "--duration", "1", "--interval", "0.05"});
    EXPECT_THAT(outcome.output, testing::ContainsRegex("\nunit1/inlet1 +Voltage +[0-9]+ +>[0-9.]+ +"));
    EXPECT_THAT(outcome.output,
                testing::HasSubstr("\n> most looks saw a change: the true rate may be higher;"));
    auto const document =
        nlohmann::json::parse(runQelshm({"hz", "--json", "--duration", "1", "--interval", "0.05"}).output);
    EXPECT_EQ(true, document.at("rates").at(0).at("mayBeHigher"));
    EXPECT_GT(document.at("rates").at(0).at("looks"), 10);
}

TEST(HzCommandTest, Names_LeaveOnlyWhatTheySelect) {
    TempFile const rows("timestamp_utc,inlet1_voltage_V,inlet1_current_A\n2023-06-09T07:34:30Z,230,1\n");
    QelReplayProcess replay({"--speed", "0", "--hold", rows.path()});
    ASSERT_TRUE(replay.readUntil("the region stays"));
    auto const outcome = runQelshm({"hz", "--json", "--duration", "0.1", "unit1/**:curr*"});
    auto const document = nlohmann::json::parse(outcome.output);
    ASSERT_EQ(1U, document.at("rates").size());
    EXPECT_EQ("Current", document.at("rates").at(0).at("name"));
    auto const none = runQelshm({"hz", "--duration", "0.1", "unit1/inlet2"});
    EXPECT_EQ(1, none.status);
    EXPECT_EQ("qelshm: there is no point \"unit1/inlet2\"; the nearest one is unit1/inlet1\n", none.errors);
}

TEST(HzCommandTest, NothingThere_IsAFailure) {
    EXPECT_EQ(1, runQelshm({"hz"}).status);
}

} // namespace qel::test
