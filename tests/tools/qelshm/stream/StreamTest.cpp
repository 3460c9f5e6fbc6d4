// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/ValueKeys.h"
#include "inspect/image/FileDescriptor.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SocketFile.h"
#include "tests/support/TempFile.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/time.h>
#include <syslog.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr long long unit = pointId(1, 0);
constexpr long long inlet = pointId(1, 0, 1);

/// A live unit with an inlet.
class StreamTest : public testing::Test {
protected:
    void SetUp() override {
        writer_.addStructure({{unit, {}}, {inlet, withKeys({key::voltage})}});
        writer_.setActive();
        store(230.0, eStatus_NoError);
    }

    void store(double number, eStatus_Bits state) {
        writer_.updateMV(inlet | key::voltage, measured(number, 1686296078000, state));
        writer_.propagateStates();
    }

    static std::vector<std::string> watch(std::vector<std::string> const& options) {
        std::vector<std::string> command{QELSHM, "watch", "--interval", "0.01"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }

    shm::QelSharedMemoryWriter writer_;
};

/// What a program writes to the system's log: it sees a /dev of its own, in which "log" leads to this socket.
class SystemLog {
public:
    SystemLog() {
        timeval const patience{20, 0};
        ::setsockopt(socket_.number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~SystemLog() { ::unlink(path); }
    SystemLog(SystemLog const&) = delete;
    SystemLog& operator=(SystemLog const&) = delete;

    /// How to start a program there.
    static std::vector<std::string> command(std::vector<std::string> const& program) {
        static constexpr char script[] =
            "mkdir /sys/dev; mount -t tmpfs tmpfs /sys/dev; mkdir /sys/dev/shm; ln -s \"$0\" /sys/dev/log; "
            "mount --bind /dev/shm /sys/dev/shm; mount --rbind /sys/dev /dev; exec \"$@\"";
        std::vector<std::string> words{"unshare", "--mount", "bash", "-euc", script, path};
        words.insert(words.end(), program.begin(), program.end());
        return words;
    }

    /// Waits for the messages.
    std::vector<std::string> take(std::size_t count) const {
        std::vector<std::string> messages;
        std::string buffer(2000, '\0');
        for (ssize_t size = 0; messages.size() < count && size >= 0;) {
            size = ::recv(socket_.number(), buffer.data(), buffer.size(), 0);
            if (size > 0) {
                messages.push_back(buffer.substr(0, static_cast<std::size_t>(size)));
            }
        }
        return messages;
    }

private:
    static constexpr char const* path = "/dev/shm/log-of-test";

    inspect::FileDescriptor socket_{boundSocket(path, SOCK_DGRAM)};
};

} // namespace

TEST_F(StreamTest, Json_IsThePictureThenTheChanges) {
    ChildProcess sut(watch({"--json", "--count", "3"}));
    auto const picture = nlohmann::json::parse(sut.readLine().value_or("{}"));
    EXPECT_EQ("picture", picture.at("event"));
    EXPECT_EQ(230.0, picture.at("points").at(1).at("values").at(0).at("number"));

    store(180.0, eStatus_LowAlarm);

    std::set<std::string> paths; // the stream may look between the value and the states of its points
    for (int change = 0; change < 3; ++change) {
        paths.insert(nlohmann::json::parse(sut.readLine().value_or("{}")).at("path"));
    }
    EXPECT_EQ((std::set<std::string>{"unit1", "unit1/inlet1", "unit1/inlet1:voltage"}), paths);
    EXPECT_EQ(0, sut.wait());
}

TEST_F(StreamTest, Csv_EndsWithASignalOrItsReader) {
    ChildProcess sut(watch({"--csv", "unit1/inlet1"}));
    ASSERT_TRUE(sut.readUntil("picture,"));
    sut.signal(SIGTERM);
    EXPECT_EQ(0, sut.wait());
    ChildProcess alone(
        {"bash", "-c", std::string(QELSHM) + " watch --csv | head -n 1; echo ${PIPESTATUS[0]}"});
    EXPECT_EQ("event,now,name,number,unit,state,before,at\n0\n", alone.readAll());
}

TEST_F(StreamTest, CommandForEachChange_RunsToItsEndBeforeTheStreamEnds) {
    TempFile const out("");
    ChildProcess sut(watch({"--csv", "--count", "3", "--on-change", "sh", "-c",
                            "sleep 0.1; echo \"$QELSHM_NAME $QELSHM_STATE\" >>" + out.path()}));
    ASSERT_TRUE(sut.readUntil("unit1/inlet1:voltage"));
    store(180.0, eStatus_LowAlarm);
    EXPECT_EQ(0, sut.wait());
    std::ifstream file(out.path());
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.insert(line);
    }
    EXPECT_EQ((std::set<std::string>{"unit1 Child Alarm", "unit1/inlet1 On, Alarm",
                                     "unit1/inlet1:voltage Low Alarm"}),
              lines);
}

// Also those that are options or verbs of qelshm.
TEST_F(StreamTest, AllWordsAfterTheCommand_BelongToIt) {
    for (std::string const option : {"--on-change", "--on-change=printf"}) {
        std::vector<std::string> words{"--csv", "--count", "3", option};
        if (option.find('=') == std::string::npos) {
            words.emplace_back("printf");
        }
        words.insert(words.end(), {"<%s>\n", "-c", "--json", "", "list", "[a,b]", "--", "unit7"});
        ChildProcess sut(watch(words), ChildProcess::Errors::IntoOutput);
        ASSERT_TRUE(sut.readUntil("unit1/inlet1:voltage"));
        store(180.0, eStatus_LowAlarm);
        EXPECT_THAT(sut.readAll(),
                    testing::HasSubstr("<-c>\n<--json>\n<>\n<list>\n<[a,b]>\n<-->\n<unit7>\n"));
        EXPECT_EQ(0, sut.wait());
        store(230.0, eStatus_NoError);
    }
}

TEST_F(StreamTest, WhatTheCommandPrints_IsNotInTheStream) {
    ChildProcess sut(watch({"--csv", "--count", "3", "--on-change", "echo", "intruder"}));
    ASSERT_TRUE(sut.readUntil("unit1/inlet1:voltage"));
    store(180.0, eStatus_LowAlarm);
    EXPECT_THAT(sut.readAll(), testing::Not(testing::HasSubstr("intruder")));
}

TEST_F(StreamTest, Syslog_ReachesTheSocketOfTheSystemsLog) {
    if (ChildProcess({"unshare", "--mount", "true"}).wait() != 0) {
        GTEST_SKIP() << "this machine refuses a /dev of one's own";
    }
    SystemLog const log;
    ChildProcess sut(SystemLog::command(watch({"--csv", "--count", "3", "--syslog"})));
    ASSERT_TRUE(sut.readUntil("unit1/inlet1:voltage"));
    store(180.0, eStatus_LowAlarm);
    EXPECT_EQ(0, sut.wait());
    auto const messages = log.take(3);
    constexpr int daemonError = LOG_DAEMON | LOG_ERR; // the number at the start
    EXPECT_THAT(messages,
                testing::Contains(testing::ContainsRegex(
                    "^<" + std::to_string(daemonError) +
                    ">.* qelshm\\[[0-9]+\\]: unit1/inlet1:voltage 180.0 V: No Error => Low Alarm$")));
    EXPECT_EQ(3U, messages.size());
}

TEST(StreamOfNothingTest, MissingRegion_IsAnErrorAfterTheWait) {
    ChildProcess sut({QELSHM, "watch", "--json", "--wait", "0"}, ChildProcess::Errors::IntoOutput);
    EXPECT_THAT(sut.readAll(), testing::HasSubstr("no active region after 0 s: "));
    EXPECT_EQ(1, sut.wait());
}

} // namespace qel::test
