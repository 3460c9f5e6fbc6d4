// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/joinOrReport.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

void finish() {}
void interrupt() {
    throw boost::thread_interrupted();
}
void fail() {
    throw std::runtime_error("no such thread");
}

/// What went to standard error, and how often a join was tried, when the tries end like these.
struct Outcome {
    std::string text;
    std::size_t tries = 0;
};

Outcome joinWith(std::vector<std::function<void()>> const& endings) {
    Outcome outcome;
    testing::internal::CaptureStderr();
    shm::joinOrReport([&] { endings.at(outcome.tries++)(); });
    outcome.text = testing::internal::GetCapturedStderr();
    return outcome;
}

TEST(JoinOrReportTest, Success_IsSilentAndNotRepeated) {
    auto const outcome = joinWith({finish, fail});
    EXPECT_EQ(outcome.text, "");
    EXPECT_EQ(outcome.tries, 1U);
}

TEST(JoinOrReportTest, Interrupted_IsReportedAndTriedOnceMore) {
    auto const outcome = joinWith({interrupt, finish, fail});
    EXPECT_EQ(outcome.text, "irq exception ?\n");
    EXPECT_EQ(outcome.tries, 2U);
}

TEST(JoinOrReportTest, InterruptedTwice_IsReportedTwiceAndGivenUp) {
    auto const outcome = joinWith({interrupt, interrupt, fail});
    EXPECT_EQ(outcome.text, "irq exception ?\ninner irq exception ?\n");
    EXPECT_EQ(outcome.tries, 2U);
}

TEST(JoinOrReportTest, InterruptedThenFailing_IsReportedTwiceAndGivenUp) {
    auto const outcome = joinWith({interrupt, fail, fail});
    EXPECT_EQ(outcome.text, "irq exception ?\ninner other exception ?\n");
    EXPECT_EQ(outcome.tries, 2U);
}

TEST(JoinOrReportTest, Failing_IsReportedAndNotRepeated) {
    auto const outcome = joinWith({fail, finish});
    EXPECT_EQ(outcome.text, "other exception ?\n");
    EXPECT_EQ(outcome.tries, 1U);
}

} // namespace
