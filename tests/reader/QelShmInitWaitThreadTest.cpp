// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmInitWaitThread.h"

#include "reader/IQelShmInitCallback.h"
#include "tests/reader/SleepRecorder.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>

namespace {

using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::SleepRecorder;

/// Is initialised at the given question, or never (0).
class Callback : public shm::IQelShmInitCallback {
public:
    Callback(unsigned int seconds, unsigned int successAt)
        : IQelShmInitCallback(seconds),
          successAt_(successAt) {}

    bool initialized() override { return ++asked == successAt_; }
    void onInitialized() override { ++told; }

    std::atomic<unsigned int> asked{0};
    std::atomic<unsigned int> told{0};

private:
    unsigned int const successAt_;
};

LogEntry initializedAfter(std::string const& seconds) {
    return {"qel.shm.access.reader", log4cpp::Priority::INFO,
            "run: Initialized after " + seconds + "s, opening shared memory"};
}

/// Runs the loop to its own end.
void runThrough(Callback& callback) {
    shm::QelShmInitWaitThread sut(&callback);
    sut.start();
    // Joining would end the loop early; the thread is known to be through when it has told or spent its
    // budget.
    auto const pauses = [] {
        return SleepRecorder::count(250ms);
    };
    ASSERT_TRUE(eventually([&] { return callback.told != 0 || pauses() == callback.polls(); }));
    sut.join();
}

TEST(QelShmInitWaitThreadTest, Run_WithoutCallback_ReturnsAtOnce) {
    shm::QelShmInitWaitThread sut(nullptr);
    LogCapture const log;
    sut.start();
    sut.run(); // once more on this thread, with the running flag surely set
    sut.join();
    EXPECT_TRUE(log.entries().empty());
}

TEST(QelShmInitWaitThreadTest, Run_WithoutBudget_NeverAsks) {
    Callback callback(0, 1);
    shm::QelShmInitWaitThread sut(&callback);
    LogCapture const log;
    sut.start();
    sut.run(); // once more on this thread, with the running flag surely set
    sut.join();
    EXPECT_EQ(callback.asked, 0U);
    EXPECT_EQ(callback.told, 0U);
    EXPECT_TRUE(log.entries().empty());
}

TEST(QelShmInitWaitThreadTest, Run_NotStarted_NeverAsks) {
    Callback callback(1, 1);
    shm::QelShmInitWaitThread sut(&callback);
    sut.run();
    EXPECT_EQ(callback.asked, 0U);
}

TEST(QelShmInitWaitThreadTest, Run_InitializedAtFirstPoll_TellsAtOnce) {
    Callback callback(1, 1);
    LogCapture const log;
    SleepRecorder const time;
    runThrough(callback);
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{initializedAfter("0.0")});
    EXPECT_EQ(callback.asked, 1U);
    EXPECT_EQ(callback.told, 1U);
    EXPECT_EQ(SleepRecorder::count(250ms), 0U);
}

TEST(QelShmInitWaitThreadTest, Run_InitializedAtFifthPoll_CountsOneSecond) {
    Callback callback(2, 5);
    LogCapture const log;
    SleepRecorder const time;
    runThrough(callback);
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{initializedAfter("1.0")});
    EXPECT_EQ(callback.asked, 5U);
    EXPECT_EQ(callback.told, 1U);
    EXPECT_EQ(SleepRecorder::count(250ms), 4U);
}

TEST(QelShmInitWaitThreadTest, Run_AnyPoll_TellsSecondsInDecimalWithOneDigit) {
    char const* const fractions[] = {".0", ".2", ".5", ".8"}; // exact quarters: halves go to the even digit
    for (unsigned int poll = 1; poll <= 120; ++poll) {
        Callback callback(30, poll);
        LogCapture const log;
        SleepRecorder const time;
        runThrough(callback);
        EXPECT_EQ(log.entries(), std::vector<LogEntry>{initializedAfter(std::to_string((poll - 1) / 4) +
                                                                        fractions[(poll - 1) % 4])});
    }
}

TEST(QelShmInitWaitThreadTest, Run_InitializedAtLastPollOfLargestBudget_StillTells) {
    Callback callback(601, 2400);
    LogCapture const log;
    SleepRecorder const time;
    runThrough(callback);
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{initializedAfter("599.8")});
    EXPECT_EQ(callback.told, 1U);
}

TEST(QelShmInitWaitThreadTest, Run_BudgetRunsOut_EndsSilently) {
    for (unsigned int const seconds : {1U, 2U, 600U, 601U}) {
        Callback callback(seconds, 0);
        LogCapture const log;
        SleepRecorder const time;
        runThrough(callback);
        EXPECT_EQ(callback.asked, callback.polls());
        EXPECT_EQ(SleepRecorder::count(250ms), callback.polls());
        EXPECT_EQ(callback.told, 0U);
        EXPECT_TRUE(log.entries().empty());
    }
}

TEST(QelShmInitWaitThreadTest, Join_WhilePolling_EndsAfterPauseUnderWay) {
    Callback callback(600, 0);
    shm::QelShmInitWaitThread sut(&callback);
    auto const start = std::chrono::steady_clock::now();
    sut.start();
    ASSERT_TRUE(eventually([&] { return callback.asked == 1; }));
    sut.join();
    // The pause is not cut short by the interruption that join() requests.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 250ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_LE(callback.asked, 2U);
    EXPECT_EQ(callback.told, 0U);
}

} // namespace
