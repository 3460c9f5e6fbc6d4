// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/LiveRegion.h"
#include "tools/replay/CapturePlayer.h"

#include "format/ValueKeys.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/TempFile.h"
#include "tests/tools/replay/CaptureFile.h"
#include "tests/tools/replay/CreatedObjects.h"
#include "tests/tools/replay/QelReplayProcess.h"
#include "tests/tools/replay/RawUnit.h"
#include "tests/tools/replay/ShippedRecordings.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr long long inletVoltage = 0x010001FFFFFF0001;
constexpr long long sensor = 0x01010101FFFF0000;
constexpr long long group = 0x0102FFFFFF010000;

std::string const threeRows =
    "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:31Z,231\n"
    "2023-06-09T07:34:32Z,232\n";

struct Outcome {
    std::optional<int> status;
    std::string output; // standard error in it
};

Outcome outcomeOf(std::vector<std::string> const& command) {
    ChildProcess program(command, ChildProcess::Errors::IntoOutput);
    program.closeInput();
    auto output = program.readAll();
    return {program.wait(), std::move(output)};
}

} // namespace

TEST(QelReplayTest, Replay_EndsAfterTheLastRowAndRemovesTheRegion) {
    TempFile const file(threeRows);
    CreatedObjects const created;

    auto const outcome = outcomeOf(QelReplayProcess::command({"--speed", "0", file.path()}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, testing::MatchesRegex(
                                    "qel-replay: region active: 2 points, 1 value; 1 recording, 3 rows\n"
                                    "qel-replay: all rows replayed: 3 rows, 3 updates in [0-9.]+ s; 0 limit "
                                    "crossings, 0 structure changes; global state On\n"));
    EXPECT_EQ((std::vector<std::string>{"QelSharedMemory"}), created.names());
    EXPECT_FALSE(rawRegionExists());
}

TEST(QelReplayTest, HeldReplay_KeepsTheLastRowUntilASignal) {
    TempFile const file(threeRows);
    QelReplayProcess sut({"--speed", "0", "--hold", file.path()});

    ASSERT_TRUE(sut.readUntil("all rows replayed; the region stays until a signal comes"));
    {
        RawUnit const region;
        EXPECT_EQ(32U, region.version());
        EXPECT_EQ(232.0, region.value(inletVoltage)->number);
        EXPECT_EQ(1686296072000U, region.value(inletVoltage)->time);
    }
    sut.signal(SIGTERM);
    EXPECT_THAT(sut.readAll(), testing::StartsWith("qel-replay: all rows replayed: 3 rows"));
    EXPECT_EQ(0, sut.wait());
    EXPECT_FALSE(rawRegionExists());
}

class SignalTest : public testing::TestWithParam<int> {};

TEST_P(SignalTest, Signal_EndsTheReplayInOrder) {
    TempFile const file(threeRows);
    QelReplayProcess sut({"--loop", file.path()});
    ASSERT_TRUE(sut.readUntil("region active"));
    EXPECT_TRUE(rawRegionExists());

    sut.signal(GetParam());

    EXPECT_TRUE(sut.readUntil("qel-replay: ended by a signal: "));
    EXPECT_EQ(0, sut.wait());
    EXPECT_FALSE(rawRegionExists());
}

INSTANTIATE_TEST_SUITE_P(All, SignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

// The second one may come at any moment while the program ends.
TEST(QelReplayTest, MoreSignalsWhileItEnds_DoNotKeepTheRegion) {
    TempFile const file(threeRows);
    for (int round = 0; round < 20; ++round) {
        QelReplayProcess sut({"--loop", file.path()});
        ASSERT_TRUE(sut.readUntil("region active"));

        sut.signal(SIGTERM);
        std::this_thread::sleep_for(std::chrono::microseconds(round * 150));
        for (int more = 0; more < 20; ++more) {
            sut.signal(more % 2 == 0 ? SIGINT : SIGTERM);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }

        EXPECT_EQ(0, sut.wait());
        ASSERT_FALSE(rawRegionExists()) << "round " << round;
    }
}

TEST(QelReplayTest, Until_SaysHowManyRowsThereAre) {
    TempFile const file(threeRows);
    EXPECT_THAT(
        outcomeOf(QelReplayProcess::command({"--speed", "0", "--until", "2", file.path()})).output,
        testing::HasSubstr("qel-replay: 2 of 3 rows replayed, stopped at --until: 2 rows, 2 updates in "));
    EXPECT_THAT(outcomeOf(QelReplayProcess::command({"--speed", "0", "--until", "3", file.path()})).output,
                testing::HasSubstr("qel-replay: all rows replayed: 3 rows, "));
    EXPECT_THAT(
        outcomeOf(QelReplayProcess::command({"--speed", "0", "--until", "7", "--loop", file.path()})).output,
        testing::HasSubstr("qel-replay: 7 rows replayed, stopped at --until: 7 rows, "));
}

TEST(QelReplayTest, TimeOfTheSummary_IsWithoutTheHold) {
    using Seconds = std::chrono::duration<double>;
    TempFile const file(threeRows);
    auto const start = std::chrono::steady_clock::now();
    QelReplayProcess sut({"--speed", "0", "--hold", file.path()});
    ASSERT_TRUE(sut.readUntil("the region stays"));
    Seconds const played = std::chrono::steady_clock::now() - start; // and started
    constexpr Seconds hold(1.0);
    std::this_thread::sleep_for(hold);
    sut.signal(SIGTERM);
    auto const summary = sut.readAll();
    constexpr std::string_view before = "3 updates in ";
    auto const place = summary.find(before);
    ASSERT_NE(std::string::npos, place) << summary;
    EXPECT_LT(std::stod(summary.substr(place + before.size())), (played + hold / 2).count()) << summary;
}

TEST(QelReplayTest, Now_StampsValuesWithThePresent) {
    TempFile const file(threeRows);
    auto const now = [] {
        return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                              std::chrono::system_clock::now().time_since_epoch())
                                              .count());
    };
    auto const before = now();
    QelReplayProcess sut({"--now", "--speed", "4", "--hold", file.path()});
    ASSERT_TRUE(sut.readUntil("the region stays"));

    RawUnit const region;
    auto const time = region.value(inletVoltage)->time;
    EXPECT_GE(time, before + 500);
    EXPECT_LE(time, now());
    EXPECT_EQ(232.0, region.value(inletVoltage)->number);
}

// Two seconds of recording at fourfold speed.
TEST(QelReplayTest, Speed_SetsTheClock) {
    TempFile const file(threeRows);
    auto const start = std::chrono::steady_clock::now();

    auto const outcome = outcomeOf(QelReplayProcess::command({"--speed", "4", file.path()}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(490));
}

TEST(QelReplayTest, Loop_LetsTimesGoOn) {
    TempFile const file(threeRows);
    QelReplayProcess sut({"--loop", "--speed", "0", "--until", "5", "--hold", file.path()});

    ASSERT_TRUE(sut.readUntil("the region stays"));

    RawUnit const region;
    EXPECT_EQ(231.0, region.value(inletVoltage)->number);
    EXPECT_EQ(1686296074000U, region.value(inletVoltage)->time);
}

TEST(QelReplayTest, FromAndUntil_CutTheRecording) {
    QelReplayProcess sut(
        {"--speed", "0", "--from", "7470,5", "--until", "3", "--hold", outletsFile, environmentFile});

    ASSERT_TRUE(sut.readUntil("the region stays"));

    RawUnit const region;
    // Row 7470 of the outlets is 7469 s after 2023-06-09T07:34:38Z; rows 7470, 5 (of the other file) and
    // 7471.
    EXPECT_EQ(1686296078000U + 7470000U, region.value(inletVoltage)->time);
    EXPECT_NEAR(23.754, region.value(sensor | key::temperature)->number, 0.2);
}

TEST(QelReplayTest, WholeRecordings_HavePlaceForEveryValue) {
    auto const outcome =
        outcomeOf(QelReplayProcess::command({"--speed", "0", outletsFile, threePhaseFile, environmentFile}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, testing::HasSubstr(" 21532 rows, "));
    EXPECT_THAT(outcome.output, testing::HasSubstr("2023-06-09T09:47:30Z  readings   " +
                                                   std::string(outletsFile) + ": 28 of 77 missing\n"));
    EXPECT_THAT(outcome.output, testing::HasSubstr("2023-06-09T09:47:31Z  readings   " +
                                                   std::string(outletsFile) + ": 0 of 77 missing\n"));
    EXPECT_THAT(outcome.output, testing::Not(testing::HasSubstr("refused")));
}

TEST(QelReplayTest, Limits_AreFollowedThroughTheRecording) {
    auto const outcome = outcomeOf(QelReplayProcess::command(
        {"--speed", "0", "--from", "7480", "--until", "300", "--limit",
         "outlet6_active_power_W:high-warning=2200,high-alarm=2400,hysteresis=20", outletsFile}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex(
                    "\n2023-06-09T09:39:31Z  limit      outlet6_active_power_W  2310.9 W  No Error "
                    "=> High Warning\n"
                    "2023-06-09T09:39:31Z  global     On => Child Warning\n"
                    "2023-06-09T09:39:32Z  limit      outlet6_active_power_W  2649.2 W  High "
                    "Warning => High Alarm\n"
                    "2023-06-09T09:39:32Z  global     Child Warning => Child Alarm\n"));
    EXPECT_THAT(outcome.output, testing::HasSubstr("  global     Child Alarm => On\n"));
}

TEST(QelReplayTest, SensorAndGroup_ComeAndGo) {
    QelReplayProcess sut({"--speed", "0", "--until", "200", "--hold", "--plug-after", "30", "--unplug-after",
                          "90", "--plug-after", "100", "--group-after", "40", outletsFile, environmentFile});

    ASSERT_TRUE(sut.readUntil("sensor 1/1 added, now 16 points, 105 values"));
    ASSERT_TRUE(sut.readUntil("group 1 added, now 17 points, 106 values"));
    ASSERT_TRUE(sut.readUntil("sensor 1/1 removed, now 16 points, 103 values"));
    ASSERT_TRUE(sut.readUntil("sensor 1/1 added, now 17 points, 106 values"));
    ASSERT_TRUE(sut.readUntil("the region stays"));

    RawUnit const region;
    EXPECT_EQ(2U, region.typeOf(sensor));
    EXPECT_EQ(1U, region.typeOf(group));
    EXPECT_NEAR(23.7, region.value(sensor | key::temperature)->number, 0.2);
    EXPECT_NEAR(26.2, region.value(sensor | key::humidity)->number, 0.3);
    EXPECT_NEAR(3.2, region.value(sensor | key::dewPoint)->number, 0.3);
    EXPECT_EQ(0, region.value(sensor | key::dewPoint)->state);
}

TEST(QelReplayTest, SecondReplay_LeavesTheFirstAlone) {
    TempFile const file(threeRows);
    QelReplayProcess first({"--speed", "0", "--hold", file.path()});
    ASSERT_TRUE(first.readUntil("the region stays"));

    auto const second = outcomeOf(QelReplayProcess::command({file.path()}));

    EXPECT_EQ(1, second.status);
    EXPECT_EQ("qel-replay: another process owns org.qel.HardwareManager on the system bus; end it first, "
              "since a unit has one hardware manager\n",
              second.output);
    EXPECT_EQ(232.0, RawUnit().value(inletVoltage)->number);
}

TEST(QelReplayTest, NoBus_IsAFailureAndPublishesNothing) {
    TempFile const file(threeRows);
    CreatedObjects const created;

    auto const outcome =
        outcomeOf({"env", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere", QEL_REPLAY, file.path()});

    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qel-replay: cannot use the system bus: Could not connect: No such file or directory; start "
              "it, or name another one in DBUS_SYSTEM_BUS_ADDRESS\n",
              outcome.output);
    EXPECT_TRUE(created.names().empty());
}

TEST(QelReplayTest, NoPlaceForTheRegion_IsAFailure) {
    TempFile const file(threeRows);

    auto const outcome =
        outcomeOf({"unshare", "--mount", "sh", "-c",
                   "mount -t tmpfs -o size=64k tmpfs /dev/shm && exec " QEL_REPLAY " " + file.path()});

    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qel-replay: the shared memory cannot be created; --log-level error tells why\n",
              outcome.output);
}

TEST(QelReplayTest, Quiet_WritesNothing) {
    TempFile const file(threeRows);
    auto const outcome = outcomeOf(QelReplayProcess::command({"--speed", "0", "--quiet", file.path()}));
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.output);
}

TEST(QelReplayTest, LogLevel_WritesTheLibrarysLogToStandardError) {
    TempFile const file(threeRows);
    std::string const command = QEL_REPLAY " --speed 0 --quiet --log-level info " + file.path();

    EXPECT_EQ("", outcomeOf({"sh", "-c", command + " 2>/dev/null"}).output);
    EXPECT_THAT(outcomeOf({"sh", "-c", command}).output,
                testing::ContainsRegex(" INFO +qel.shm.access.writer setActive: root.version = 0x20\n"));
}

TEST(QelReplayTest, ReaderOfTheLinesThatGoesAway_DoesNotKeepTheRegion) {
    TempFile const file(threeRows);

    auto const outcome = outcomeOf(
        {"bash", "-c", QEL_REPLAY " --speed 4 " + file.path() + " | true; echo status ${PIPESTATUS[0]}"});

    EXPECT_EQ("status 0\n", outcome.output);
    EXPECT_FALSE(rawRegionExists());
}

TEST(QelReplayTest, HelpAndVersion_GoToStandardOutput) {
    auto const help = outcomeOf({"sh", "-c", QEL_REPLAY " --help 2>/dev/null"});
    EXPECT_EQ(0, help.status);
    for (auto const* const part :
         {"Usage: qel-replay [OPTIONS] FILE...", "--speed", "--limit ", "--limits ", "--loop", "--plug-after",
          "Exit status:", "Recordings:", "Limits:", "Examples:"}) {
        EXPECT_THAT(help.output, testing::HasSubstr(part));
    }
    auto const version = outcomeOf({"sh", "-c", QEL_REPLAY " --version 2>/dev/null"});
    EXPECT_EQ(0, version.status);
    EXPECT_THAT(version.output, testing::MatchesRegex("qel-replay [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

struct Refused {
    char const* name;
    char const* file; // content
    std::vector<std::string> options;
    char const* message; // '@' stands for the file
};

std::ostream& operator<<(std::ostream& out, Refused const& refused) {
    return out << refused.name;
}

class RefusedInputTest : public testing::TestWithParam<Refused> {};

TEST_P(RefusedInputTest, IsOneLineAndStatusTwoAndPublishesNothing) {
    TempFile const file(GetParam().file);
    CreatedObjects const created;
    auto options = GetParam().options;
    options.push_back(file.path());
    std::string message = GetParam().message;
    if (auto const mark = message.find('@'); mark != std::string::npos) {
        message.replace(mark, 1, file.path());
    }

    auto const outcome = outcomeOf(QelReplayProcess::command(options));

    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("qel-replay: " + message + '\n', outcome.output);
    EXPECT_TRUE(created.names().empty());
}

namespace {

/// Images of a running replay of the recorded data, taken at short intervals from its start to its end.
std::vector<inspect::Image> imagesOfAReplay() {
    QelReplayProcess replay({"--speed", "200", "--from", "7480,1", "--until", "300", "--plug-after", "30",
                             "--unplug-after", "90", "--plug-after", "100", "--group-after", "40", "--limit",
                             "outlet6_active_power_W:high-warning=2200,high-alarm=2400,hysteresis=20",
                             outletsFile, environmentFile});
    std::vector<inspect::Image> images;
    if (replay.readUntil("region active")) {
        inspect::LiveRegion const live;
        while (!live.isReplaced()) {
            images.push_back(live.copy());
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    return images;
}

} // namespace

TEST(QelReplayTest, FromRecord_ReproducesACapturedReplayByteForByte) {
    CaptureFile const file(imagesOfAReplay());
    auto const count = file.images().size();
    ASSERT_GT(count, 20U);

    {
        std::ostringstream out;
        tools::ReplayLog log(&out, tools::ReplaySteps::Samples);
        tools::CapturePlayer::Parts parts;
        parts.samples.file = file.path();
        parts.samples.samples = count;
        tools::CapturePlayer player(parts, log, [] {});
        player.begin();
        for (auto const& image : file.images()) {
            expectSame(image, inspect::LiveRegion().copy());
            if (player.due()) {
                player.step();
            }
        }
        EXPECT_THAT(out.str(), testing::HasSubstr(" => Child Alarm\n"));
        EXPECT_THAT(out.str(), testing::HasSubstr("  structure  changed, now "));
    }
    for (auto const samples : {std::size_t{1}, count / 3, count / 2, count}) {
        QelReplayProcess sut(
            {"--from-record", file.path(), "--speed", "0", "--hold", "--until", std::to_string(samples)});
        ASSERT_TRUE(sut.readUntil("replayed"));
        EXPECT_EQ(samples == count
                      ? "qel-replay: all samples replayed; the region stays until a signal comes"
                      : "qel-replay: " + std::to_string(samples) + (samples == 1 ? " sample" : " samples") +
                            " replayed, stopped at --until; the region stays until a signal comes",
                  sut.lastLine());
        expectSame(file.images()[samples - 1], inspect::LiveRegion().copy());
    }
    EXPECT_FALSE(rawRegionExists());
}

TEST(QelReplayTest, FromRecord_ServesReaders) {
    auto const images = imagesOfAReplay();
    ASSERT_FALSE(images.empty());
    CaptureFile const file(images);
    shm::QelSharedMemoryReader const listener(0, false); // maps nothing, counts the signals
    MainLoopThread const loop;

    QelReplayProcess sut({"--from-record", file.path(), "--speed", "0", "--hold"});

    ASSERT_TRUE(sut.readUntil("the region stays"));
    EXPECT_TRUE(eventually([&] { return listener.modifications() != 0; }));
    auto const outcome = outcomeOf({QELSHM, "get", "0x01010101ffff0000"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, testing::HasSubstr("Temperature"));
}

TEST(QelReplayTest, FromRecord_KeepsTheSpeedAndEndsLikeAnyReplay) {
    CaptureFile const file({3, randomImages(1, 71).front()});
    CreatedObjects const created;
    auto const start = std::chrono::steady_clock::now();

    auto const outcome = outcomeOf(QelReplayProcess::command({"--from-record", file.path(), "--speed", "4"}));

    EXPECT_EQ(0, outcome.status);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(240));
    EXPECT_THAT(outcome.output, testing::MatchesRegex("qel-replay: region active: .*; 1 capture, 3 samples\n"
                                                      "qel-replay: all samples replayed: 3 samples, .*\n"));
    EXPECT_EQ((std::vector<std::string>{"QelSharedMemory"}), created.names());
    EXPECT_FALSE(rawRegionExists());
}

TEST(QelReplayTest, FromRecord_ThatIsWrongPublishesNothing) {
    TempFile const file(threeRows);
    CreatedObjects const created;
    auto const wrong = outcomeOf(QelReplayProcess::command({"--from-record", file.path()}));
    EXPECT_EQ(2, wrong.status);
    EXPECT_EQ(
        "qel-replay: --from-record: cannot read " + file.path() +
            ": it is not a capture; expected a capture of qelshm record; --until can end the replay before a "
            "damaged sample\n",
        wrong.output);
    auto const both = outcomeOf(QelReplayProcess::command({"--from-record", "x", file.path()}));
    EXPECT_EQ(2, both.status);
    EXPECT_THAT(both.output, testing::StartsWith("qel-replay: FILE: not allowed with --from-record; "));
    EXPECT_TRUE(created.names().empty());
}

namespace {

/// A held replay that takes commands.
class ControlledReplayTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(replay_->readUntil("the region stays")); }

    Outcome command(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--control", path_});
        return outcomeOf(QelReplayProcess::command(arguments));
    }

    TempFile const file_{threeRows};
    std::string path_ = file_.path() + ".control";
    std::unique_ptr<QelReplayProcess> replay_ = std::make_unique<QelReplayProcess>(
        std::vector<std::string>{"--speed", "0", "--hold", "--control", path_, file_.path()});
};

} // namespace

TEST_F(ControlledReplayTest, Set_RaisesAnAlarmAndUnsetEndsIt) {
    auto outcome = command({"--set", "unit1/inlet1:voltage=180.5,low-alarm"});
    EXPECT_EQ("set unit1/inlet1:voltage = 180.5 V, Low Alarm; until it is unset or the replay ends\n",
              outcome.output);
    EXPECT_EQ(0, outcome.status);
    {
        RawUnit const region;
        EXPECT_EQ(180.5, region.value(inletVoltage)->number);
        EXPECT_EQ(eStatus_LowAlarm, region.value(inletVoltage)->state);
        EXPECT_EQ(eStatus_ChildAlarm, region.globalState());
    }
    EXPECT_TRUE(replay_->readUntil("set        unit1/inlet1:voltage = 180.5 V, Low Alarm"));
    EXPECT_TRUE(replay_->readUntil("global     On => Child Alarm"));

    outcome = command({"--unset", "unit1/inlet1:voltage"});
    EXPECT_EQ("unset unit1/inlet1:voltage; the recording goes on\n", outcome.output);
    RawUnit const region;
    EXPECT_EQ(232.0, region.value(inletVoltage)->number);
    EXPECT_EQ(eStatus_On, region.globalState());
}

TEST_F(ControlledReplayTest, CommandThatIsRefused_SaysWhy) {
    auto outcome = command({"--set", "unit1/inlet1:current=1"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(
        "qel-replay: set: the unit has no value \"unit1/inlet1:current\" now; expected a name of \"qelshm "
        "list\", such as unit1/inlet1:active-power\n",
        outcome.output);
    outcome = command({"--unset", "unit1"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output,
                testing::StartsWith("qel-replay: unset: nothing is set by hand for \"unit1\"; "));
    outcome = command({"--set", "unit1/inlet1:voltage=1,loud"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_THAT(outcome.output, testing::StartsWith("qel-replay: set: \"loud\" is not a state; "));
}

TEST_F(ControlledReplayTest, Socket_IsOfItsUserOnlyAndIsRemoved) {
    struct stat file {};
    ASSERT_EQ(0, ::stat(path_.c_str(), &file));
    EXPECT_TRUE(S_ISSOCK(file.st_mode));
    EXPECT_EQ(0600U, file.st_mode & 07777U);
    replay_.reset();
    EXPECT_NE(0, ::stat(path_.c_str(), &file));
    auto const outcome = command({"--unset", "unit1"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, testing::MatchesRegex("qel-replay: no replay takes commands at " + path_ +
                                                      ": .*; start one with --control " + path_ + "\n"));
}

TEST(QelReplayTest, ControlSocketThatCannotBeMade_PublishesNothing) {
    TempFile const file(threeRows);
    CreatedObjects const created;
    auto const outcome = outcomeOf(QelReplayProcess::command({"--control", file.path(), file.path()}));
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qel-replay: cannot take commands at " + file.path() +
                  ": a file that is no socket is there; name another path\n",
              outcome.output);
    EXPECT_TRUE(created.names().empty());
}

constexpr char const* goodFile = "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n";

INSTANTIATE_TEST_SUITE_P(
    Kinds, RefusedInputTest,
    testing::Values(
        Refused{"EmptyFile",
                "",
                {},
                "@: the file is empty; expected a header line that starts with timestamp_utc"},
        Refused{"UnknownColumn",
                "timestamp_utc,inlet1_charm\n2023-06-09T07:34:30Z,1\n",
                {},
                "@:1: unknown column \"inlet1_charm\"; expected a column such as inlet1_voltage_V, "
                "outlet10_active_power_W, phase12_voltage_V, total_power_factor, frequency_Hz or "
                "sensor1_temperature_degC"},
        Refused{"DuplicateColumn",
                "timestamp_utc,inlet1_voltage_V,inlet1_voltage_V\n2023-06-09T07:34:30Z,1,1\n",
                {},
                "@:1: inlet1_voltage_V: duplicate column; expected each column once"},
        Refused{
            "NoNumber",
            "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:31Z,high\n",
            {},
            "@:3: inlet1_voltage_V: \"high\" is not a number; expected a decimal number or an empty cell"},
        Refused{"NoTime",
                "timestamp_utc,inlet1_voltage_V\n09.06.2023,230\n",
                {},
                "@:2: timestamp_utc: \"09.06.2023\" is not a time; expected ISO 8601 UTC, such as "
                "2023-06-09T07:34:38Z"},
        Refused{"TimeBackwards",
                "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:29Z,230\n",
                {},
                "@:3: timestamp_utc: \"2023-06-09T07:34:29Z\" is not later than the previous row; expected a "
                "time after "
                "2023-06-09T07:34:30Z"},
        Refused{"ShortRow",
                "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z\n",
                {},
                "@:2: the row has 1 cells; expected 2, as in the header"},
        Refused{"LongRow",
                "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,1,2\n",
                {},
                "@:2: the row has 3 cells; expected 2, as in the header"},
        Refused{
            "MissingFile",
            goodFile,
            {"/tmp/there/is/no.csv"},
            "/tmp/there/is/no.csv: cannot be read (No such file or directory); expected a readable CSV file"},
        Refused{"LimitOfUnknownColumn",
                goodFile,
                {"--limit", "inlet9_voltage_V:high-alarm=1"},
                "--limit: unknown column \"inlet9_voltage_V\"; expected a column such as inlet1_voltage_V, "
                "outlet10_active_power_W, phase12_voltage_V, total_power_factor, frequency_Hz or "
                "sensor1_temperature_degC"},
        Refused{"LimitOfAbsentColumn",
                goodFile,
                {"--limit", "inlet1_current_A:high-alarm=1"},
                "--limit: inlet1_current_A: no recording has this column; expected a column of the FILEs"},
        Refused{"LimitLowAboveHigh",
                goodFile,
                {"--limit", "inlet1_voltage_V:high-alarm=200,low-alarm=210"},
                "--limit: inlet1_voltage_V: the low threshold 210 and the high threshold 200 are too close; "
                "expected low thresholds below high ones by more than hysteresis=0"},
        Refused{"LimitNegativeHysteresis",
                goodFile,
                {"--limit", "inlet1_voltage_V:high-alarm=200,hysteresis=-1"},
                "--limit: inlet1_voltage_V: hysteresis=-1 is negative; expected a hysteresis of 0 or more"},
        Refused{"MissingLimitsFile",
                goodFile,
                {"--limits", "/tmp/there/is/no"},
                "/tmp/there/is/no: cannot be read (No such file or directory); expected a readable file of "
                "limits"},
        Refused{"ScheduleWithoutSensor",
                goodFile,
                {"--plug-after", "5"},
                "--plug-after: nothing to add or remove; expected a recording with columns of sensor1"},
        Refused{"RowBeyondTheEnd", goodFile, {"--from", "2"}, "--from: @ has no row 2; expected 1 to 1"},
        Refused{"UnknownOption", goodFile, {"--fast"}, "The following argument was not expected: --fast"}),
    [](testing::TestParamInfo<Refused> const& tested) { return tested.param.name; });

} // namespace qel::test
