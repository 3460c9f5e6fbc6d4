// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What a reader does with its connection to the bus.

#include "reader/QelSharedMemoryReader.h"

#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/Sanitizers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace {

using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::MainLoopThread;
using shm::QelSharedMemoryReader;

LogEntry closedLine() {
    return {
        "qel.shm.access.reader", log4cpp::Priority::WARN,
        "onClosed: the connection to the bus was closed, changes of the structure are not heard any more"};
}

TEST(QelSharedMemoryReaderBusTest, ConnectionClosed_IsToldOnceByEachReader) {
    QelSharedMemoryReader const first(0, false);
    QelSharedMemoryReader const second(0, false);
    LogCapture const log;
    qel::test::closeSharedConnection();
    EXPECT_EQ(log.count(closedLine()), 2U);
}

TEST(QelSharedMemoryReaderBusTest, ConnectionClosedAndExchanged_IsToldOnce) {
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    qel::test::closeSharedConnection();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(sut.initialized());
    testing::internal::GetCapturedStderr();
    FakeHardwareManager const service;
    EXPECT_TRUE(eventually([&] { return sut.initialized(); }));
    EXPECT_EQ(log.count(closedLine()), 1U);
}

/// Lets a child destroy the reader and end by exit(); its status, nothing when it does not end.
std::optional<int> statusOfChildThatEnds(std::unique_ptr<QelSharedMemoryReader>& reader) {
    return qel::test::inForkedChild([&reader]() -> int {
        reader.reset();
        std::exit(0); // NOLINT(concurrency-mt-unsafe): the child has one thread
    });
}

class QelSharedMemoryReaderForkedTest : public testing::Test {
protected:
    QelSharedMemoryReaderForkedTest() { manager.setAnswer(0); }

    void expectSignalsAreHeard() {
        manager.emitStructureChanged();
        EXPECT_TRUE(eventually([&] { return reader->modifications() == 1; }));
    }

    FakeHardwareManager manager;
    MainLoopThread const loop;
    std::unique_ptr<QelSharedMemoryReader> reader;
};

TEST_F(QelSharedMemoryReaderForkedTest, DestroyedInTheChild_LeavesTheParentItsSubscription) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    reader = std::make_unique<QelSharedMemoryReader>(0, false);
    LogCapture const log;
    EXPECT_EQ(statusOfChildThatEnds(reader), 0);
    expectSignalsAreHeard();
}

TEST_F(QelSharedMemoryReaderForkedTest, DestroyedInTheChildWhileItWaits_EndsAtOnce) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    reader = std::make_unique<QelSharedMemoryReader>(600, false);
    ASSERT_TRUE(manager.waitForCalls(2));
    EXPECT_EQ(statusOfChildThatEnds(reader), 0);
    EXPECT_TRUE(manager.waitForCalls(4)) << "the parent's reader goes on waiting";
    expectSignalsAreHeard();
}

} // namespace
