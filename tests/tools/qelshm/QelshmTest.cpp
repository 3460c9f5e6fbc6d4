// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/LiveUnit.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFile.h"
#include "tests/tools/replay/QelReplayProcess.h"
#include "tests/tools/replay/ShippedRecordings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qel::test {

namespace {

std::string const inletFile =
    "timestamp_utc,inlet1_voltage_V,inlet1_active_power_W\n2023-06-09T07:34:30Z,230.04,1000\n"
    "2023-06-09T07:34:31Z,,1000\n";
std::string const longWait = "30";

std::vector<std::string> qelshm(std::vector<std::string> const& arguments) {
    std::vector<std::string> command{QELSHM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

struct Outcome {
    std::optional<int> status;
    std::string output;
};

Outcome outcomeOf(std::vector<std::string> const& command, ChildProcess::Errors errors) {
    ChildProcess program(command, errors);
    program.closeInput();
    auto output = program.readAll();
    return {program.wait(), std::move(output)};
}

/// Only standard output: on a busy machine the program may tell that it waits.
Outcome outcomeOf(std::vector<std::string> const& command) {
    return outcomeOf(command, ChildProcess::Errors::Inherit);
}

Outcome outcomeWithErrors(std::vector<std::string> const& command) {
    return outcomeOf(command, ChildProcess::Errors::IntoOutput);
}

long linesIn(std::string const& text) {
    return std::count(text.begin(), text.end(), '\n');
}

/// A region with two rows in it that stays as it is.
class QelshmTest : public testing::Test {
protected:
    QelshmTest() { EXPECT_TRUE(replay_.readUntil("the region stays")); }

    TempFile const file_{inletFile};
    QelReplayProcess replay_{
        {"--speed", "0", "--hold", "--limit", "inlet1_active_power_W:high-warning=900", file_.path()}};
};

/// A region whose values change many times a second.
class QelshmWatchTest : public testing::Test {
protected:
    QelshmWatchTest() { EXPECT_TRUE(replay_.readUntil("region active")); }

    QelReplayProcess replay_{{"--speed", "20", "--loop", "--plug-after", "30", outletsFile, environmentFile}};
};

} // namespace

TEST_F(QelshmTest, List_PrintsPointsAndValues) {
    auto const outcome = outcomeOf(qelshm({"list"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(
        outcome.output,
        testing::MatchesRegex(
            "0x0100ffffffff0000  unit1         Master  Child Warning\n"
            "0x010001ffffff0000  unit1/inlet1  1P      On, Warning\n"
            "  0x010001ffffff0001  Voltage        230.0 V   Lost          2023-06-09T07:34:31Z  [0-9]+ d "
            "[0-9]+ h\n"
            "  0x010001ffffff0013  Active Power   1000.0 W  High Warning  2023-06-09T07:34:31Z  [0-9]+ d "
            "[0-9]+ h\n"
            "  0x010001ffffff0024  Active Energy  0.0 kWh   No Error      2023-06-09T07:34:31Z  [0-9]+ d "
            "[0-9]+ h\n"));
}

TEST_F(QelshmTest, Tree_PrintsThePoints) {
    auto const outcome = outcomeOf(qelshm({"tree"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("unit1           unit   Master  Child Warning\n"
              "  unit1/inlet1  inlet  1P      On, Warning\n",
              outcome.output);
}

TEST_F(QelshmTest, Status_TellsOfTheLiveObject) {
    auto const outcome = outcomeOf(qelshm({"status"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, testing::HasSubstr("global state   Child Warning\nstatus LED     orange\n"));
}

TEST_F(QelshmTest, GetOfAValue_PrintsOneLine) {
    for (auto const* const svid : {"0x010001ffffff0001", "72059793061117953"}) {
        auto const outcome = outcomeOf(qelshm({"get", svid}));
        EXPECT_EQ(0, outcome.status);
        EXPECT_THAT(outcome.output,
                    testing::StartsWith("2023-06-09T07:34:31Z  unit1/inlet1  Voltage  230.0 V  Lost  "));
    }
}

TEST_F(QelshmTest, NoVerb_NeedsABus) {
    for (auto const* const verb : {"status", "tree", "list"}) {
        auto const outcome =
            outcomeWithErrors({"env", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere", QELSHM, verb});
        EXPECT_EQ(0, outcome.status) << outcome.output;
    }
}

TEST_F(QelshmWatchTest, Count_WritesSoManyLines) {
    auto const outcome = outcomeOf(qelshm({"--wait", longWait, "watch", "--count", "7"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(7, linesIn(outcome.output));
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex(
                    "^2023-06-09T[0-9:]+Z  unit1[a-z0-9/]* +[A-Z][A-Za-z ]+[-0-9.]+[ A-Za-z]*  No Error\n"));
}

TEST_F(QelshmWatchTest, Svids_ChooseWhatIsWritten) {
    auto const outcome = outcomeOf(qelshm({"--wait", longWait, "watch", "--count", "6", "--interval", "0.1",
                                           "0x010001ffffff0001", "0x010001ff03080000"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(6, linesIn(outcome.output));
    EXPECT_THAT(outcome.output,
                testing::Not(testing::ContainsRegex("circuit[12]|circuit3 |Z  unit1/inlet1 +[A-UW-Z]")));
}

// The sensor is plugged in 1.5 s after the start.
TEST_F(QelshmWatchTest, PointThatComesLater_IsWatchedToo) {
    auto const outcome =
        outcomeOf(qelshm({"--wait", longWait, "watch", "--count", "1", "0x01010101ffff0100"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("^2015-02-0[0-9T:-]+Z  unit1/sensor1.1 +Temperature +[0-9.]+ °C +No "
                                       "Error\n$"));
}

TEST_F(QelshmWatchTest, UnitThatGoes_IsToldAndTheNextOneIsWatched) {
    ChildProcess sut(qelshm({"watch"}), ChildProcess::Errors::IntoOutput);
    ASSERT_TRUE(sut.readUntil("Z  "));

    replay_.signal(SIGTERM);

    ASSERT_TRUE(sut.readUntil("qelshm: waiting: there is no shared-memory object QelSharedMemory"));
    QelReplayProcess next({"--speed", "20", "--loop", outletsFile});
    EXPECT_TRUE(sut.readUntil("Z  unit1"));
    sut.signal(SIGTERM);
    EXPECT_EQ(0, sut.wait());
}

TEST(QelshmWatchWaitTest, NoUnit_IsToldAndFailsInTheEnd) {
    auto const outcome = outcomeWithErrors(qelshm({"watch", "--wait", "2"}));
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: waiting: there is no shared-memory object QelSharedMemory\n"
              "qelshm: no active region after 2 s: there is no shared-memory object QelSharedMemory\n",
              outcome.output);
}

TEST_F(QelshmWatchTest, ReaderOfTheLinesThatIsGone_EndsAWatchWithoutLines) {
    auto const outcome =
        outcomeOf({"bash", "-c", QELSHM " watch unit7 | true; echo status ${PIPESTATUS[0]}"});
    EXPECT_EQ("status 0\n", outcome.output);
}

class WatchSignalTest : public QelshmWatchTest, public testing::WithParamInterface<int> {};

TEST_P(WatchSignalTest, Signal_EndsTheWatch) {
    ChildProcess sut(qelshm({"--wait", longWait, "watch"}));
    ASSERT_TRUE(sut.readUntil("Z  "));

    sut.signal(GetParam());

    EXPECT_EQ(0, sut.wait());
}

INSTANTIATE_TEST_SUITE_P(All, WatchSignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(QelshmWatchTest, ReaderOfTheLinesThatGoesAway_EndsTheWatch) {
    auto const outcome = outcomeOf(
        {"bash", "-c", QELSHM " --wait 30 watch | head -n 2 >/dev/null; echo status ${PIPESTATUS[0]}"});
    EXPECT_EQ("status 0\n", outcome.output);
}

TEST(QelshmWaitTest, NoWait_LooksOnce) {
    auto const outcome = outcomeWithErrors(qelshm({"list"}));
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: there is no shared-memory object QelSharedMemory\n", outcome.output);
}

TEST(QelshmWaitTest, RegionThatDoesNotComeInTime_IsToldAndFails) {
    auto const outcome = outcomeWithErrors(qelshm({"--wait", "2", "list"}));
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: waiting: there is no shared-memory object QelSharedMemory\n"
              "qelshm: there is no shared-memory object QelSharedMemory\n",
              outcome.output);
}

TEST(QelshmWaitTest, RegionThatStaysInactive_IsToldAndShown) {
    tools::LiveUnit const region;
    auto const outcome = outcomeWithErrors(qelshm({"--wait", "2", "list"}));
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: waiting: the region is not active: its version is 255, not 32\n"
              "qelshm: warning: the region is not active: its version is 255, not 32\n",
              outcome.output);
}

TEST(QelshmWaitTest, RegionThatComesInTime_IsRead) {
    TempFile const file(inletFile);
    ChildProcess sut(qelshm({"--wait", longWait, "list"}), ChildProcess::Errors::IntoOutput);
    ASSERT_TRUE(sut.readUntil("qelshm: waiting: there is no shared-memory object"));

    QelReplayProcess const replay({"--speed", "0", "--hold", file.path()});

    EXPECT_TRUE(sut.readUntil("0x010001ffffff0000  unit1/inlet1"));
    sut.readAll();
    EXPECT_EQ(0, sut.wait());
}

TEST(QelshmHelpTest, HelpAndVersion_GoToStandardOutput) {
    auto const help = outcomeOf({"sh", "-c", QELSHM " --help 2>/dev/null"});
    EXPECT_EQ(0, help.status);
    for (auto const* const part :
         {"Usage: qelshm [OPTIONS] SUBCOMMAND", "status", "tree", "list", "get", "find", "dump", "watch",
          "completion", "--image", "--wait", "--json", "--color", "Exit status:", "Examples:"}) {
        EXPECT_THAT(help.output, testing::HasSubstr(part));
    }
    auto const watch = outcomeOf(qelshm({"watch", "--help"}));
    EXPECT_EQ(0, watch.status);
    EXPECT_THAT(watch.output, testing::HasSubstr("--count"));
    auto const version = outcomeOf({"sh", "-c", QELSHM " --version 2>/dev/null"});
    EXPECT_EQ(0, version.status);
    EXPECT_THAT(version.output, testing::MatchesRegex("qelshm [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace qel::test
