// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/StateChanges.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qel::test {

namespace {

using shm::StateChanges;

TEST(StateChangesTest, AtFirst_AChangeIsNoted) {
    StateChanges const sut;

    EXPECT_FALSE(sut.areCombinedInto(eStatus_UndefinedValue));
    EXPECT_FALSE(sut.areCombinedInto(eStatus_On));
}

TEST(StateChangesTest, OnceCombined_OnlyTheResultIsAccepted) {
    StateChanges sut;
    sut.take();
    sut.setResult(eStatus_ChildAlarm);

    EXPECT_TRUE(sut.areCombinedInto(eStatus_ChildAlarm));
    EXPECT_FALSE(sut.areCombinedInto(eStatus_On));
    EXPECT_FALSE(sut.areCombinedInto(eStatus_UndefinedValue)); // a wiped region
}

TEST(StateChangesTest, Note_CountsUntilItIsTaken) {
    StateChanges sut;
    sut.take();
    sut.setResult(eStatus_On);

    sut.note();
    sut.note();
    EXPECT_FALSE(sut.areCombinedInto(eStatus_On));

    sut.take();
    EXPECT_TRUE(sut.areCombinedInto(eStatus_On));
}

TEST(StateChangesTest, NoteBetweenTakingAndResult_IsNotLost) {
    StateChanges sut;
    sut.take();
    sut.note();
    sut.setResult(eStatus_On);

    EXPECT_FALSE(sut.areCombinedInto(eStatus_On));
}

// A lost note would leave both threads waiting for each other.
TEST(StateChangesTest, NotesOfAnotherThread_AreMetWithWhatWasStoredBefore) {
    constexpr int last = 20000;
    constexpr int waits = 100; // so often the other thread has to catch up
    StateChanges sut;
    sut.setResult(eStatus_On);
    std::atomic<int> stored{0};
    std::atomic<int> combined{0};
    std::thread storing([&] {
        for (int number = 1; number <= last; ++number) {
            stored.store(number, std::memory_order_relaxed);
            sut.note();
            while (number % waits == 0 && combined.load(std::memory_order_relaxed) < number) {
                std::this_thread::yield();
            }
        }
    });
    while (combined < last) {
        if (sut.areCombinedInto(eStatus_On)) {
            std::this_thread::yield();
            continue;
        }
        sut.take();
        combined.store(stored.load(std::memory_order_relaxed), std::memory_order_relaxed);
    }
    storing.join();
    EXPECT_EQ(last, combined);
}

} // namespace

} // namespace qel::test
