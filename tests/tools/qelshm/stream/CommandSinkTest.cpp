// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/CommandSink.h"

#include "tests/support/Eventually.h"
#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/stream/StreamFixture.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace qel::stream {

namespace {

using Lines = std::vector<std::string>;

class CommandSinkTest : public test::StreamFixture {
protected:
    CommandSink sinkOf(std::vector<std::string> command) {
        return {std::move(command), [this](std::string const& line) {
                    told.push_back(line);
                }};
    }

    static void finish(CommandSink& sut) {
        EXPECT_TRUE(test::eventually([&] { return !sut.work(); }));
    }

    void alarm(CommandSink& sut, bool isOn) {
        unit.deliver(unit.inletPower, isOn ? 4000.5 : 1.0, time, isOn ? eStatus_HighAlarm : eStatus_NoError);
        lookWith(sut);
    }

    std::string written() const {
        std::ifstream file(out.path());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    test::TempFile const out{""};
    Lines told;
};

} // namespace

TEST_F(CommandSinkTest, ChangedState_IsInTheEnvironmentOfTheCommand) {
    auto sut =
        sinkOf({"sh", "-c",
                "printf '%s|%s|%s|%s|%s|%s|%s|%s|%s\\n' \"$QELSHM_NAME\" \"$QELSHM_POINT\" \"$QELSHM_KEY\" "
                "\"$QELSHM_VALUE\" \"$QELSHM_UNIT\" \"$QELSHM_STATE\" \"$QELSHM_OLD_STATE\" "
                "\"$QELSHM_TIME\" \"$1\" >>" +
                    out.path(),
                "sh", "an; argument $(id)"});
    lookWith(sut);
    EXPECT_FALSE(sut.work()) << "a picture runs nothing";
    unit.region().points[unit.inlet].state = eStatus_OnAlarm;
    alarm(sut, true);
    finish(sut);
    EXPECT_EQ("unit1/inlet1|unit1/inlet1||||On, Alarm|On||an; argument $(id)\n"
              "unit1/inlet1:active-power|unit1/inlet1|active-power|4000.5|W|High Alarm|No "
              "Error|2023-06-09T07:34:38Z|an; argument $(id)\n",
              written());
    EXPECT_EQ(Lines{}, told);
}

TEST_F(CommandSinkTest, ChangedNumber_RunsNothing) {
    auto sut = sinkOf({"sh", "-c", "echo x >>" + out.path()});
    lookWith(sut);
    unit.deliver(unit.inletPower, 5.0, time);
    lookWith(sut);
    finish(sut);
    EXPECT_EQ("", written());
}

TEST_F(CommandSinkTest, Commands_RunOneAfterTheOther) {
    auto sut = sinkOf({"sh", "-c", "echo begin >>" + out.path() + "; sleep 0.05; echo end >>" + out.path()});
    lookWith(sut);
    for (int round = 0; round < 4; ++round) {
        alarm(sut, round % 2 == 0);
    }
    finish(sut);
    EXPECT_EQ("begin\nend\nbegin\nend\nbegin\nend\nbegin\nend\n", written());
}

TEST_F(CommandSinkTest, FailedCommand_IsTold) {
    auto status = sinkOf({"sh", "-c", "exit 3"});
    lookWith(status);
    alarm(status, true);
    finish(status);
    EXPECT_EQ((Lines{"sh ended with status 3"}), told);
    told.clear();
    auto killed = sinkOf({"sh", "-c", "kill -9 $$"});
    alarm(killed, false);
    finish(killed);
    EXPECT_EQ((Lines{"sh was ended by signal 9"}), told);
    told.clear();
    auto missing = sinkOf({"/there/is/no"});
    alarm(missing, true);
    finish(missing);
    EXPECT_EQ((Lines{"cannot run /there/is/no: No such file or directory"}), told);
}

TEST_F(CommandSinkTest, ChangesBeyondTheQueue_AreDroppedAndTold) {
    auto const fifo = out.path() + ".fifo";
    ASSERT_EQ(0, ::mkfifo(fifo.c_str(), 0600));
    int const held = ::open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    auto sut = sinkOf({"sh", "-c", "read -r line <\"$0\"", fifo}); // runs until a line comes
    lookWith(sut);
    for (std::size_t round = 0; round < CommandSink::mostWaiting + 6; ++round) {
        alarm(sut, round % 2 == 0);
    }
    EXPECT_EQ((Lines{"sh is too slow: 1000 changes wait for it; further ones are dropped"}), told);
    sut.end();
    ASSERT_EQ(2U, told.size());
    EXPECT_EQ("sh was not run for 1005 changes", told.back());
    // A line rather than the end of the FIFO: the command may not have opened it yet.
    EXPECT_EQ(1, ::write(held, "\n", 1));
    finish(sut);
    ::close(held);
    ::unlink(fifo.c_str());
}

TEST_F(CommandSinkTest, VariablesOfAnOuterCommand_AreNotPassedOn) {
    ::setenv("QELSHM_STRANGE", "1", 1);
    auto sut = sinkOf({"sh", "-c", "env | grep -c QELSHM_STRANGE >>" + out.path() + "; true"});
    lookWith(sut);
    alarm(sut, true);
    finish(sut);
    ::unsetenv("QELSHM_STRANGE");
    EXPECT_EQ("0\n", written());
}

} // namespace qel::stream
