// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/LogCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(LogCommandTest, Names_SelectEvents) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const outcome = runQelshm({"log", file, "unit1/**:active-power", "--to", "+39s"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("2023-11-14T22:13:30Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "No Error => Low Warning\n"
              "2023-11-14T22:13:40Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "Low Warning => High Alarm\n"
              "2023-11-14T22:13:50Z      value state    unit1/inlet1/circuit1/socket2:active-power    "
              "High Alarm => No Error\n",
              outcome.output);
}

TEST(LogCommandTest, GapsAndRestarts_AreListedForEveryName) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"log", sampleCapture(), "group1"});
    EXPECT_THAT(outcome.output,
                AllOf(HasSubstr("2023-11-14T22:14:10Z      gap "), HasSubstr("no sample for 11 s\n"),
                      HasSubstr("2023-11-14T22:14:15Z      inactive\n"),
                      HasSubstr("2023-11-14T22:14:17Z      restart\n"), Not(HasSubstr("socket"))));
}

TEST(LogCommandTest, Json_IsOneDocument) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"log", "--json", sampleCapture(), "unit1/inlet1/circuit1/socket2"});
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("log", document.at("verb"));
    EXPECT_EQ(51, document.at("samples"));
    auto const& event = document.at("events").at(1);
    EXPECT_EQ("value state", event.at("event"));
    EXPECT_EQ("No Error", event.at("before").at("text"));
    EXPECT_EQ("unit1/inlet1/circuit1/socket2", event.at("path"));
    auto const none = nlohmann::json::parse(
        runQelshm({"log", "--json", "night.rec", "unit1/inlet7", "--to", "+5s"}).output);
    EXPECT_TRUE(none.at("events").empty());
}

TEST(LogCommandTest, WrongArguments_AreClearErrors) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const image = folder.add("healthy");
    EXPECT_EQ("qelshm: cannot read healthy.img: it is not a capture\n", runQelshm({"log", image}).errors);
    EXPECT_EQ("qelshm: --to +2s is before --from +5s\n",
              runQelshm({"log", file, "--from", "+5s", "--to", "+2s"}).errors);
    auto const pattern = runQelshm({"log", file, "unit1//x"});
    EXPECT_EQ(2, pattern.status);
    EXPECT_THAT(pattern.errors, HasSubstr("unit1//x"));
    EXPECT_EQ(2, runQelshm({"log", file, "--from", "yesterday"}).status);
    EXPECT_EQ(2, runQelshm({"log"}).status);
}

} // namespace qel::test
