// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/OwnedThread.h"

#include "tests/support/ForkedChild.h"
#include "tests/support/Sanitizers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <utility>

namespace {

using qel::test::inForkedChild;
using shm::OwnedThread;

TEST(OwnedThreadTest, RunsItsBodyInThisProcess) {
    std::atomic<bool> ran{false};
    OwnedThread sut([&] { ran = true; });
    EXPECT_TRUE(sut.isOfThisProcess());
    sut.thread().join();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(sut.isOfThisProcess());
}

TEST(OwnedThreadTest, InChildrenAndTheirChildren_IsNotOfTheProcess) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    std::promise<void> release;
    OwnedThread sut([&] { release.get_future().wait(); });
    auto const status = inForkedChild([&] {
        if (sut.isOfThisProcess()) {
            return 1;
        }
        return inForkedChild([&] { return sut.isOfThisProcess() ? 1 : 0; }) == 0 ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(sut.isOfThisProcess());
    release.set_value();
    sut.thread().join();
}

TEST(OwnedThreadTest, Abandon_TouchesNoThread) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    std::promise<void> release;
    auto sut = std::make_unique<OwnedThread>([&] { release.get_future().wait(); });
    auto const status = inForkedChild([&] {
        OwnedThread::abandon(std::move(sut));
        return sut == nullptr ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    release.set_value();
    sut->thread().join();
}

} // namespace
