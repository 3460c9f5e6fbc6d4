// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/Pace.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace qel::tools {

using std::chrono::steady_clock;

TEST(PaceTest, Wait_LastsUntilTheMoment) {
    Pace const sut;
    auto const moment = steady_clock::now() + std::chrono::milliseconds(50);
    EXPECT_TRUE(sut.waitUntil(moment));
    EXPECT_GE(steady_clock::now(), moment);
}

TEST(PaceTest, MomentThatHasPassed_IsNotWaitedFor) {
    EXPECT_TRUE(Pace().waitUntil(steady_clock::now() - std::chrono::hours(1)));
}

TEST(PaceTest, Signal_EndsTheWait) {
    Pace const sut;
    ::kill(::getpid(), SIGTERM);
    EXPECT_FALSE(sut.waitUntil(steady_clock::now() + std::chrono::hours(1)));
}

TEST(PaceTest, SecondsOf_KeepsFractions) {
    EXPECT_EQ(std::chrono::milliseconds(1250), secondsOf(1.25));
}

} // namespace qel::tools
