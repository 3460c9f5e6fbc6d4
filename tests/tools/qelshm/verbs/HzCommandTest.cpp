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
    auto const outcome = runQelshm({"hz", "--json", "--duration", "2", "--interval", "0.01"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    auto const document = nlohmann::json::parse(outcome.output);
    ASSERT_EQ(1U, document.at("rates").size());
    EXPECT_GT(document.at("rates").at(0).at("updates"), 1);
    EXPECT_EQ("unit1/inlet1", document.at("rates").at(0).at("path"));
    auto const text = runQelshm({"hz", "--duration", "0.1"}).output;
    EXPECT_THAT(text, testing::ContainsRegex("\nunit1/inlet1 +Voltage +[0-9]+ +[0-9.]+ +"));
}

TEST(HzCommandTest, NothingThere_IsAFailure) {
    EXPECT_EQ(1, runQelshm({"hz"}).status);
}

} // namespace qel::test
