// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmOptions.h"

#include "tests/support/ChildProcess.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/Terminal.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

#include <ostream>

namespace qel::test {

namespace {

/// Whether the program colours what it writes to a terminal, with a setting of its environment.
bool isColouredOnTerminal(std::string const& setting, std::vector<std::string> const& arguments) {
    ImageFolder const folder;
    std::vector<std::string> command{
        "/usr/bin/env", setting, QELSHM, "status", "--image", (folder.path() / folder.add("alarm")).string()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Terminal terminal(command, "xterm");
    EXPECT_EQ(0, terminal.wait());
    return terminal.readUntil("\x1b[31mChild Alarm\x1b[0m", std::chrono::milliseconds(500));
}

struct Usage {
    char const* name;
    std::vector<std::string> arguments;
    char const* message;
};

std::ostream& operator<<(std::ostream& out, Usage const& usage) {
    return out << usage.name;
}

class QelshmUsageTest : public testing::TestWithParam<Usage> {};

} // namespace

TEST(QelshmOptionsTest, Terminal_IsColouredUnlessTheUserWantsNone) {
    EXPECT_TRUE(isColouredOnTerminal("NO_COLOR=", {}));
    EXPECT_FALSE(isColouredOnTerminal("NO_COLOR=1", {}));
    EXPECT_FALSE(isColouredOnTerminal("TERM=dumb", {}));
    EXPECT_FALSE(isColouredOnTerminal("NO_COLOR=", {"--color", "never"}));
    EXPECT_TRUE(isColouredOnTerminal("NO_COLOR=1", {"--color=always"})) << "what is said outright holds";
}

TEST(QelshmOptionsTest, Pipe_IsNotColouredUnlessAskedFor) {
    ImageFolder const folder;
    auto const file = folder.add("alarm");
    ChildProcess plain({QELSHM, "status", "--image", file});
    EXPECT_THAT(plain.readAll(), testing::Not(testing::HasSubstr("\x1b")));
    ChildProcess coloured({QELSHM, "status", "--image", file, "--color", "always"});
    EXPECT_THAT(coloured.readAll(), testing::HasSubstr("\x1b[31mChild Alarm\x1b[0m"));
}

TEST(QelshmOptionsTest, SecondsAs_KeepsFractions) {
    EXPECT_EQ(std::chrono::milliseconds(1250), tools::secondsAs(1.25));
    EXPECT_EQ(std::chrono::milliseconds(1), tools::secondsAs<std::chrono::milliseconds>(0.0019));
}

TEST_P(QelshmUsageTest, WrongArguments_AreOneLineAndStatusTwo) {
    auto const outcome = runQelshm(GetParam().arguments);
    EXPECT_EQ(2, outcome.status);
    auto const& words = GetParam().arguments;
    if (std::find(words.begin(), words.end(), "--json") == words.end()) {
        EXPECT_EQ("", outcome.output);
    } else {
        EXPECT_EQ(GetParam().message, nlohmann::json::parse(outcome.output).at("error"));
    }
    EXPECT_EQ("qelshm: " + std::string(GetParam().message) + '\n', outcome.errors);
}

INSTANTIATE_TEST_SUITE_P(
    All, QelshmUsageTest,
    testing::Values(
        Usage{"NoCommand", {}, "A subcommand is required"},
        Usage{"UnknownCommand", {"display"}, "there is no verb \"display\"; qelshm --help lists the verbs"},
        Usage{"MistypedCommand",
              {"statsu", "--max-age", "5"},
              "there is no verb \"statsu\"; did you mean status?"},
        Usage{"MistypedCommandBehindOptions",
              {"--wait", "3", "lits"},
              "there is no verb \"lits\"; did you mean list?"},
        Usage{"UnknownOption", {"list", "--fast"}, "The following argument was not expected: --fast"},
        Usage{"GetWithoutName", {"get"}, "NAME is required"},
        Usage{"FindWithoutText", {"find"}, "TEXT or --older-than is required"},
        Usage{"DumpWithoutFile", {"dump"}, "FILE is required"},
        Usage{"LongWait", {"--wait", "601", "list"}, "--wait: Value 601 not in range 0 to 600"},
        Usage{"WaitForAnImage", {"--wait", "1", "--image", "x", "list"}, "--image excludes --wait"},
        Usage{"NoImage", {"--image", "", "list"}, "--image: missing file name"},
        Usage{"UnknownColor", {"--color", "blue", "list"}, "--color: blue not in {always,auto,never}"},
        Usage{"DepthOfNone", {"tree", "--depth", "0"}, "--depth: Value 0 not in range 1 to 800"},
        Usage{"PathsWithValues", {"tree", "--paths", "--values"}, "--values excludes --paths"},
        Usage{"PathsAsJson", {"tree", "--paths", "--json"}, "--json excludes --paths"},
        Usage{"ImageAndJson",
              {"dump", "-", "--json"},
              "FILE: standard output cannot take the image and the JSON document; name a file"},
        Usage{"UnknownCommandWithJson", {"--json", "lits"}, "there is no verb \"lits\"; did you mean list?"},
        Usage{"NegativeAge",
              {"status", "--max-age", "-1"},
              "--max-age: \"-1\" is not a number from 0 to 1000000000"},
        Usage{"AgeThatIsNoNumber",
              {"status", "--max-age", "nan"},
              "--max-age: \"nan\" is not a number from 0 to 1000000000"},
        Usage{"EndlessMeasurement",
              {"hz", "--duration", "inf"},
              "--duration: \"inf\" is not a number from 0 to 86400"},
        Usage{"MeasurementWithoutInterval",
              {"hz", "--interval", "nan"},
              "--interval: \"nan\" is not a number from 0.001 to 60"},
        Usage{"CaptureWithoutInterval",
              {"record", "x", "--interval", "-nan"},
              "--interval: \"-nan\" is not a number from 0.001 to 3600"},
        Usage{"EndlessCapture",
              {"record", "x", "--duration", "infinity"},
              "--duration: \"infinity\" is not a number from 0 to 100000000"},
        Usage{"WatchWithoutInterval",
              {"watch", "--interval", "nan"},
              "--interval: \"nan\" is not a number from 0.01 to 3600"},
        Usage{"AgeWithoutNumber",
              {"find", "--older-than", "old"},
              "--older-than: \"old\" is not a duration of up to 316224000 s; durations are like 10, 10s, 5m, "
              "2h"},
        Usage{"WatchAsCsvAndJson", {"watch", "--csv", "--json"}, "--json excludes --csv"},
        Usage{"WatchOfAnImage", {"watch", "--image", "x"}, "watch excludes --image"},
        Usage{"UnknownShell", {"completion", "tcsh"}, "SHELL: tcsh not in {bash,fish,zsh}"},
        Usage{"ControlCharacters",
              {"\x1b[2J"},
              "there is no verb \"\\x1B[2J\"; qelshm --help lists the verbs"}),
    [](testing::TestParamInfo<Usage> const& tested) { return tested.param.name; });

} // namespace qel::test
