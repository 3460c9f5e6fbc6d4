// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/StopSignals.h"

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>

namespace qel::tools {

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point soon() {
    return Clock::now() + std::chrono::milliseconds(20);
}

Clock::time_point late() {
    return Clock::now() + std::chrono::seconds(30);
}

class StopSignalsTest : public testing::Test {
protected:
    StopSignalsTest() { EXPECT_EQ(0, ::pipe(pipe_.data())); }
    ~StopSignalsTest() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }

    std::array<int, 2> pipe_{};
};

class EachStopSignalTest : public StopSignalsTest, public testing::WithParamInterface<int> {};

} // namespace

TEST_P(EachStopSignalTest, Signal_EndsTheWaitNotTheProgram) {
    StopSignals const sut;
    ASSERT_EQ(0, ::raise(GetParam()));
    EXPECT_TRUE(sut.waitForInput(late(), pipe_[0]));
}

INSTANTIATE_TEST_SUITE_P(All, EachStopSignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(StopSignalsTest, WaitUntil_LastsUntilTheMoment) {
    StopSignals const sut;
    auto const moment = soon();
    EXPECT_FALSE(sut.waitUntil(moment));
    EXPECT_GE(Clock::now(), moment);
}

TEST_F(StopSignalsTest, MomentThatHasPassed_IsNotWaitedFor) {
    EXPECT_FALSE(StopSignals().waitUntil(Clock::now() - std::chrono::hours(1)));
}

TEST_F(StopSignalsTest, Signal_EndsAWaitUntilAMoment) {
    StopSignals const sut;
    ASSERT_EQ(0, ::raise(SIGTERM));
    EXPECT_TRUE(sut.waitUntil(Clock::now() + std::chrono::hours(1)));
}

TEST_F(StopSignalsTest, NoSignalAndNoInput_WaitsUntilTheMoment) {
    StopSignals const sut;
    auto const moment = soon();
    EXPECT_FALSE(sut.waitForInput(moment, pipe_[0]));
    EXPECT_GE(Clock::now(), moment);
}

TEST_F(StopSignalsTest, Input_EndsTheWaitOnly) {
    StopSignals const sut;
    auto const moment = late();
    ASSERT_EQ(1, ::write(pipe_[1], "x", 1));
    EXPECT_FALSE(sut.waitForInput(moment, pipe_[0]));
    EXPECT_LT(Clock::now(), moment);
}

TEST_F(StopSignalsTest, InputThatHasEnded_Stops) {
    StopSignals const sut;
    ::close(pipe_[1]);
    EXPECT_TRUE(sut.waitForInput(late(), pipe_[0]));
}

TEST_F(StopSignalsTest, ReaderThatIsGone_Stops) {
    StopSignals const sut;
    EXPECT_FALSE(sut.waitUntil(soon(), pipe_[1]));
    ::close(pipe_[0]);
    EXPECT_TRUE(sut.waitUntil(late(), pipe_[1]));
}

TEST_F(StopSignalsTest, Afterwards_SignalsAreAsBeforeAndForgotten) {
    sigset_t before;
    sigset_t after;
    pthread_sigmask(SIG_BLOCK, nullptr, &before);
    {
        StopSignals const sut;
        ASSERT_EQ(0, ::raise(SIGTERM)); // would end this program if it were still to come
    }
    pthread_sigmask(SIG_BLOCK, nullptr, &after);
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(sigismember(&before, number), sigismember(&after, number));
    }
}

TEST_F(StopSignalsTest, MoreSignalsAfterTheFirst_LeaveTheProgramToEndInOrder) {
    {
        StopSignals const sut;
        ASSERT_EQ(0, ::raise(SIGTERM));
    }
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        ASSERT_EQ(0, ::raise(number));
    }
    test::ChildProcess child({"sleep", "60"});
    child.signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, child.wait()) << "a program that is started later ends as usual";
}

TEST_F(StopSignalsTest, NoSignal_LeavesTheirEffect) {
    EXPECT_EXIT(
        {
            for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
                EXPECT_NE(SIG_ERR, ::signal(number, SIG_DFL));
            }
            StopSignals();
            EXPECT_EQ(0, ::raise(SIGTERM));
        },
        testing::KilledBySignal(SIGTERM), "");
}

} // namespace qel::tools
