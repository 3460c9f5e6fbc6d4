// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The program, with a writing process and a bus.

#include "tools/hardwaremanager/HardwareManagerApp.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/RawRegion.h"
#include "tests/tools/hardwaremanager/Client.h"

#include <gmock/gmock.h>

#include <csignal>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

struct Outcome {
    std::optional<int> status;
    std::string output; // standard error in it
};

Outcome outcomeOf(std::vector<std::string> const& command) {
    ChildProcess program(command, ChildProcess::Errors::IntoOutput);
    auto output = program.readAll();
    return {program.wait(), std::move(output)};
}

/// Serves when it is constructed.
class Manager : public ChildProcess {
public:
    explicit Manager(std::vector<std::string> const& options = {"--interval", "0.05"})
        : ChildProcess(command(options)) {
        EXPECT_TRUE(readUntil("qel-hardware-manager: serves org.qel.HardwareManager"));
    }

    /// Usually 1; more if it looked at the region in the middle of a change.
    /// @return how many lines it wrote up to the one that contains the text, 0 if there is none
    int linesUntil(std::string const& text) {
        int count = 0;
        while (auto const line = readLine()) {
            ++count;
            if (line->find(text) != std::string::npos) {
                return count;
            }
        }
        ADD_FAILURE() << "no line contains " << text;
        return 0;
    }

private:
    static std::vector<std::string> command(std::vector<std::string> const& options) {
        std::vector<std::string> words{QEL_HARDWARE_MANAGER};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }
};

/// The example, active when it is constructed. It announces its structure itself, but here it finds no bus.
class Writer : public ChildProcess {
public:
    Writer()
        : ChildProcess({"env", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere", EXAMPLE_WRITER},
                       Errors::IntoOutput) {
        EXPECT_TRUE(readUntil("writer: region active"));
    }

    void end() {
        signal(SIGTERM);
        EXPECT_EQ(0, wait());
    }
};

/// The program, which the system lets open the object but not read it.
std::vector<std::string> withoutReading() {
    // A leak check would trace the program, and only one can.
    return {"sh", "-c",
            "ASAN_OPTIONS=detect_leaks=0 exec strace -f -qq -o /dev/null -P /dev/shm/QelSharedMemory "
            "-e inject=pread64:error=EIO " QEL_HARDWARE_MANAGER};
}

constexpr char cannotRead[] =
    "qel-hardware-manager: cannot read the shared memory: read: Input/output error\n";

} // namespace

TEST(QelHardwareManagerTest, Initialized_FollowsTheRegion) {
    Manager sut;
    Client client;
    EXPECT_EQ(0, client.initialized());
    {
        Writer writer;
        EXPECT_EQ(1, client.initialized());
        writer.end();
        EXPECT_EQ(0, client.initialized());
    }
    Writer again;
    EXPECT_EQ(1, client.initialized()) << "another object";
    again.signal(SIGKILL);
    again.wait();
    EXPECT_TRUE(rawRegionExists());
    EXPECT_EQ(0, client.initialized()) << "what a killed writer leaves behind";
    Writer const third;
    EXPECT_EQ(1, client.initialized());
}

TEST(QelHardwareManagerTest, StructureThatChanged_IsAnnounced) {
    Manager sut;
    Client client;
    ASSERT_EQ(0, client.initialized()) << "the subscription is in place";
    Writer const writer;
    int lines = sut.linesUntil("region active: 6 points, 8 values");
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == lines; })) << client.signals();

    writer.signal(SIGUSR1);
    lines += sut.linesUntil("structure changed and announced: 7 points, 9 values");
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == lines; })) << client.signals();
    writer.signal(SIGUSR1);
    lines += sut.linesUntil("structure changed and announced: 6 points, 8 values");
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == lines; })) << client.signals();

    sut.signal(SIGTERM);
    EXPECT_EQ("qel-hardware-manager: ended by a signal\n", sut.readAll());
    EXPECT_EQ(lines, client.signals()) << "values alone are no change";
}

TEST(QelHardwareManagerTest, RegionThatComesAndGoes_IsReported) {
    Manager sut;
    {
        Writer writer;
        EXPECT_EQ("qel-hardware-manager: region active: 6 points, 8 values", sut.readLine());
        writer.end();
        EXPECT_EQ("qel-hardware-manager: region not active any more", sut.readLine());
    }
    Writer const writer;
    EXPECT_EQ("qel-hardware-manager: region active: 6 points, 8 values", sut.readLine());
}

TEST(QelHardwareManagerTest, WithoutAnInterval_AnnouncesOnRequestOnly) {
    Manager sut({"--interval", "0"});
    Client client;
    Writer const writer;
    ASSERT_EQ(1, client.initialized()) << "the subscription is in place";

    sut.signal(SIGUSR1);

    EXPECT_EQ("qel-hardware-manager: change of structure announced on request", sut.readLine());
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == 1; })) << client.signals();
    sut.signal(SIGUSR1);
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == 2; })) << client.signals();
}

class HardwareManagerSignalTest : public testing::TestWithParam<int> {};

TEST_P(HardwareManagerSignalTest, Signal_EndsTheProgramAndGivesUpTheName) {
    Manager sut;
    sut.signal(GetParam());
    EXPECT_EQ(0, sut.wait());
    EXPECT_EQ("qel-hardware-manager: ended by a signal\n", sut.readAll());
    EXPECT_EQ(std::nullopt, Client().initialized());
}

INSTANTIATE_TEST_SUITE_P(All, HardwareManagerSignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(QelHardwareManagerTest, NoBus_IsAFailureThatSaysWhatToDo) {
    auto const outcome =
        outcomeOf({"env", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere", QEL_HARDWARE_MANAGER});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(
        "qel-hardware-manager: cannot use the system bus: Could not connect: No such file or directory; "
        "start it, or name another one in DBUS_SYSTEM_BUS_ADDRESS\n",
        outcome.output);
}

TEST(QelHardwareManagerTest, TakenName_IsAFailureThatSaysWhatToDo) {
    Manager const first;
    auto const outcome = outcomeOf({QEL_HARDWARE_MANAGER});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(
        "qel-hardware-manager: another process owns org.qel.HardwareManager on the system bus; end it first, "
        "since a unit has one hardware manager\n",
        outcome.output);
}

TEST(QelHardwareManagerTest, BusThatEnds_IsAFailure) {
    std::string const address = "unix:path=/sys/ending-bus";
    ChildProcess bus({"dbus-daemon", "--config-file=/sys/bus.conf", "--nofork", "--nopidfile",
                      "--print-address", "--address=" + address});
    ASSERT_TRUE(bus.readLine());
    ChildProcess sut({"env", "DBUS_SYSTEM_BUS_ADDRESS=" + address, QEL_HARDWARE_MANAGER},
                     ChildProcess::Errors::IntoOutput);
    ASSERT_TRUE(sut.readUntil("serves org.qel.HardwareManager"));

    bus.signal(SIGKILL);

    EXPECT_EQ("qel-hardware-manager: the connection to the system bus is lost\n", sut.readAll());
    EXPECT_EQ(1, sut.wait());
}

TEST(QelHardwareManagerTest, RegionThatCannotBeReadAtTheStart_IsAFailure) {
    Writer const writer;
    auto const outcome = outcomeOf(withoutReading());
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(std::string("qel-hardware-manager: serves org.qel.HardwareManager\n") + cannotRead,
              outcome.output);
}

TEST(QelHardwareManagerTest, RegionThatCannotBeReadLater_IsTheSameFailure) {
    ChildProcess sut(withoutReading(), ChildProcess::Errors::IntoOutput);
    ASSERT_TRUE(sut.readUntil("serves org.qel.HardwareManager"));
    ASSERT_EQ(0, Client().initialized()) << "the first look is over";
    Writer const writer;
    EXPECT_EQ(cannotRead, sut.readAll());
    EXPECT_EQ(1, sut.wait());
}

TEST(QelHardwareManagerTest, Quiet_WritesNothing) {
    ChildProcess sut({QEL_HARDWARE_MANAGER, "--quiet"}, ChildProcess::Errors::IntoOutput);
    Client client;
    EXPECT_TRUE(Client::waitFor([&] { return client.initialized().has_value(); }));
    sut.signal(SIGUSR1);
    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == 1; })) << client.signals();
    sut.signal(SIGTERM);
    EXPECT_EQ("", sut.readAll());
    EXPECT_EQ(0, sut.wait());
}

TEST(QelHardwareManagerTest, HelpAndVersion_GoToStandardOutput) {
    auto const help = outcomeOf({"sh", "-c", QEL_HARDWARE_MANAGER " --help 2>/dev/null"});
    EXPECT_EQ(0, help.status);
    for (auto const* const part : {"Usage: qel-hardware-manager [OPTIONS]", "--interval", "--quiet",
                                   "SIGUSR1", "shmStructureChanged", "Exit status:", "Examples:"}) {
        EXPECT_THAT(help.output, testing::HasSubstr(part));
    }
    auto const version = outcomeOf({"sh", "-c", QEL_HARDWARE_MANAGER " --version 2>/dev/null"});
    EXPECT_EQ(0, version.status);
    EXPECT_THAT(version.output, testing::MatchesRegex("qel-hardware-manager [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(QelHardwareManagerTest, WrongArguments_AreOneLineAndStatusTwo) {
    auto const outcome = outcomeOf({QEL_HARDWARE_MANAGER, "--interval", "never"});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ("qel-hardware-manager: --interval: expected 0.01 to 3600, or 0; not never\n", outcome.output);
}

} // namespace qel::test
