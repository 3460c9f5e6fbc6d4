// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/busAnswers.h"

#include "tests/reader/BusFailures.h"
#include "tests/reader/NoMoreThreads.h"

#include <gtest/gtest.h>

namespace {

using shm::busAnswers;

TEST(BusAnswersTest, BusThatGreets_Does) {
    EXPECT_TRUE(busAnswers());
}

TEST(BusAnswersTest, WithoutABus_IsFalse) {
    qel::test::UnreachableBus const down;
    EXPECT_FALSE(busAnswers());
}

/// Without a limit the test would not end.
TEST(BusAnswersTest, BusThatNeverGreets_IsGivenUp) {
    qel::test::MuteBus const stopped;
    EXPECT_FALSE(busAnswers());
}

TEST(BusAnswersTest, WithoutAThreadToWatchTheTime_IsFalse) {
    qel::test::NoMoreThreads const none;
    EXPECT_FALSE(busAnswers());
}

} // namespace
