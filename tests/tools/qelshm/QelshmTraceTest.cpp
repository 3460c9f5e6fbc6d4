// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What qelshm asks of the system while it looks at a live unit.
#include "tests/support/ChildProcess.h"
#include "tests/support/RawRegion.h"
#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/replay/QelReplayProcess.h"

#include <gmock/gmock.h>

#include <fstream>
#include <ostream>
#include <regex>

namespace qel::test {

namespace {

std::string const rows = "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230.04\n";

/// The lines of a program's system calls; descriptors are followed by what they lead to.
std::vector<std::string> callsOf(std::vector<std::string> const& program) {
    TempFile const log("");
    // A leak check would trace the program, and only one can.
    std::vector<std::string> command{
        "env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-f", "-y", "-s", "256", "-o", log.path()};
    command.insert(command.end(), program.begin(), program.end());
    ChildProcess traced(command, ChildProcess::Errors::IntoOutput);
    traced.closeInput();
    auto const output = traced.readAll();
    EXPECT_EQ(0, traced.wait()) << output;
    std::vector<std::string> lines;
    std::ifstream stream(log.path());
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Why a call does more than look, "" when it does not.
std::string objection(std::string const& call) {
    static std::regex const onObject(R"(^\d+ +(\w+)\([^<"]*</dev/shm/QelSharedMemory[^>]*>)");
    static std::regex const byName(R"(^\d+ +(\w+)\(.*"(/dev/shm/)?QelSharedMemory")");
    static std::regex const opensToWrite("O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_APPEND");
    static std::regex const bus(R"(^\d+ +(connect|sendto|sendmsg)\(.*(/sys/bus|dbus))");
    static std::string const reading = " pread64 read fstat newfstatat fcntl lseek close statx ";
    static std::string const finding = " openat open execve stat lstat newfstatat readlink access write ";
    std::smatch found;
    if (std::regex_search(call, bus)) {
        return "talks to the bus";
    }
    if (std::regex_search(call, found, onObject) &&
        reading.find(' ' + found[1].str() + ' ') == std::string::npos) {
        return "does more than read";
    }
    if (std::regex_search(call, found, byName)) {
        if (finding.find(' ' + found[1].str() + ' ') == std::string::npos) {
            return "does more than look up";
        }
        if (found[1].str().rfind("open", 0) == 0 && std::regex_search(call, opensToWrite)) {
            return "opens to write";
        }
    }
    return "";
}

struct Verb {
    char const* name;
    std::vector<std::string> arguments;
};

std::ostream& operator<<(std::ostream& out, Verb const& verb) {
    return out << verb.name;
}

class QelshmTraceTest : public testing::TestWithParam<Verb> {
protected:
    QelshmTraceTest() { EXPECT_TRUE(replay_.readUntil("the region stays")); }

    static void expectNothingButReading(std::vector<std::string> const& command) {
        auto const before = RawRegion().copy();
        auto const calls = callsOf(command);
        for (auto const& call : calls) {
            EXPECT_EQ("", objection(call)) << call;
        }
        EXPECT_THAT(calls,
                    testing::Contains(testing::ContainsRegex("pread64\\([0-9]+</dev/shm/QelSharedMemory>")));
        EXPECT_EQ(before, RawRegion().copy());
    }

    ImageFolder const folder_;
    TempFile const file_{rows};
    QelReplayProcess replay_{{"--speed", "0", "--hold", file_.path()}};
};

} // namespace

TEST_P(QelshmTraceTest, Verb_ReadsTheObjectAndNothingElse) {
    std::vector<std::string> command{QELSHM};
    command.insert(command.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    expectNothingButReading(command);
}

class QelshmWatchTraceTest : public QelshmTraceTest {};

TEST_P(QelshmWatchTraceTest, Watch_ReadsTheObjectAndNothingElse) {
    // Long enough that a traced program on a busy machine has installed its handler of the signal.
    std::vector<std::string> command{"timeout", "--preserve-status", "--signal=TERM", "6", QELSHM};
    command.insert(command.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    expectNothingButReading(command);
}

INSTANTIATE_TEST_SUITE_P(All, QelshmWatchTraceTest,
                         testing::Values(Verb{"Watch", {"watch", "--interval", "0.1"}}),
                         [](testing::TestParamInfo<Verb> const& tested) { return tested.param.name; });

INSTANTIATE_TEST_SUITE_P(
    All, QelshmTraceTest,
    testing::Values(Verb{"Status", {"status", "--json"}}, Verb{"Tree", {"tree", "--values"}},
                    Verb{"List", {"list", "--wait", "5"}}, Verb{"Get", {"get", "unit1/inlet1"}},
                    Verb{"Find", {"find", "voltage"}}, Verb{"Dump", {"dump", "saved.img"}},
                    Verb{"Check", {"check"}}, Verb{"Why", {"why", "unit1/inlet1"}},
                    Verb{"Diff", {"diff", "live", "live"}}, Verb{"Hz", {"hz", "--duration", "0.1"}},
                    Verb{"Wait", {"wait", "active"}},
                    Verb{"Record", {"record", "saved.rec", "--count", "2", "--interval", "0.05"}}),
    [](testing::TestParamInfo<Verb> const& tested) { return tested.param.name; });

// Otherwise the test above would show nothing.
TEST(QelshmTraceJudgeTest, Writer_IsObjectedTo) {
    TempFile const file(rows);
    std::vector<std::string> objections;
    for (auto const& call : callsOf(QelReplayProcess::command({"--speed", "0", file.path()}))) {
        objections.push_back(objection(call));
    }
    EXPECT_THAT(objections, testing::Contains("opens to write"));
    EXPECT_THAT(objections, testing::Contains("does more than read"));
    EXPECT_THAT(objections, testing::Contains("talks to the bus"));
}

} // namespace qel::test
