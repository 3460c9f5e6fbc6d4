// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/StopSignals.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <chrono>

namespace qel::watch {

namespace {

constexpr std::chrono::milliseconds moment(20);
constexpr std::chrono::milliseconds longTime(30000);

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
    ASSERT_EQ(0, ::kill(::getpid(), GetParam()));
    EXPECT_TRUE(sut.wait(longTime, pipe_[0], true));
}

INSTANTIATE_TEST_SUITE_P(All, EachStopSignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(StopSignalsTest, NoSignal_WaitsItsTime) {
    StopSignals const sut;
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(sut.wait(moment, pipe_[0], true));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, moment);
}

TEST_F(StopSignalsTest, Input_EndsTheWaitOnly) {
    StopSignals const sut;
    ASSERT_EQ(1, ::write(pipe_[1], "x", 1));
    EXPECT_FALSE(sut.wait(longTime, pipe_[0], true));
}

TEST_F(StopSignalsTest, ReaderThatIsGone_Stops) {
    StopSignals const sut;
    EXPECT_FALSE(sut.wait(moment, pipe_[1], false));
    ::close(pipe_[0]);
    EXPECT_TRUE(sut.wait(longTime, pipe_[1], false));
}

TEST_F(StopSignalsTest, Afterwards_SignalsAreAsBeforeAndForgotten) {
    sigset_t before;
    sigset_t after;
    pthread_sigmask(SIG_BLOCK, nullptr, &before);
    {
        StopSignals const sut;
        ASSERT_EQ(0, ::kill(::getpid(), SIGTERM)); // would end this program if it were still to come
    }
    pthread_sigmask(SIG_BLOCK, nullptr, &after);
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(sigismember(&before, number), sigismember(&after, number));
    }
}

} // namespace qel::watch
