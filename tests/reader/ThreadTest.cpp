// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/Thread.h"

#include "tests/reader/NoMoreThreads.h"
#include "tests/support/Eventually.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/Sanitizers.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>

#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using qel::test::eventually;
using qel::test::inForkedChild;
using qel::test::NoMoreThreads;

/// Notes which of its operations were called, and with which running flag.
class NotingThread : public Thread {
public:
    explicit NotingThread(std::function<void()> body = [] {}) : body_(std::move(body)) {}

    void run() override {
        sawRunning_ = running();
        ++runs_;
        body_();
    }
    void preStop() override { note("preStop"); }
    void postStop() override { note("postStop"); }

    bool isRunning() const { return running(); }
    int runs() const { return runs_; }
    bool sawRunning() const { return sawRunning_; }
    bool waitForRun(int run = 1) const {
        return eventually([&] { return runs_ == run; });
    }
    std::vector<std::string> const& stops() const { return stops_; }

private:
    void note(std::string const& name) { stops_.push_back(name + (running() ? ", running" : ", stopped")); }

    std::function<void()> body_;
    std::atomic<bool> sawRunning_{false};
    std::atomic<int> runs_{0};
    std::vector<std::string> stops_;
};

std::vector<std::string> const orderlyStop{"preStop, running", "postStop, stopped"};

TEST(ThreadTest, Join_NeverStarted_DoesNothing) {
    NotingThread sut;
    testing::internal::CaptureStderr();
    sut.join();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(sut.stops().empty());
    EXPECT_EQ(sut.runs(), 0);
    EXPECT_FALSE(sut.isRunning());
}

TEST(ThreadTest, Start_RunsBodyOnAnotherThreadWithRunningSet) {
    std::thread::id runner;
    NotingThread sut([&] { runner = std::this_thread::get_id(); });
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    sut.join();
    EXPECT_TRUE(sut.sawRunning());
    EXPECT_NE(runner, std::thread::id());
    EXPECT_NE(runner, std::this_thread::get_id());
}

TEST(ThreadTest, Start_SecondTime_SaysSoAndKeepsFirstThread) {
    std::promise<void> release;
    NotingThread sut([&] { release.get_future().wait(); });
    sut.start();
    testing::internal::CaptureStdout();
    sut.start();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Already started\n");
    release.set_value();
    sut.join();
    EXPECT_EQ(sut.runs(), 1);
}

TEST(ThreadTest, Start_AfterBodyEndedByItself_StillSaysAlreadyStarted) {
    NotingThread sut;
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    testing::internal::CaptureStdout();
    sut.start();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Already started\n");
    sut.join();
}

TEST(ThreadTest, Start_AfterJoin_StartsAnew) {
    NotingThread sut;
    sut.start();
    sut.join();
    sut.start();
    sut.join();
    EXPECT_EQ(sut.runs(), 2);
}

TEST(ThreadTest, Start_WithoutThreadToGet_Throws) {
    NotingThread sut;
    {
        NoMoreThreads const shortage;
        EXPECT_THROW(sut.start(), boost::thread_resource_error);
    }
    // The running flag was set before; there is no thread to interrupt, so only preStop is called.
    sut.join();
    EXPECT_EQ(sut.stops(), std::vector<std::string>{"preStop, running"});
    EXPECT_EQ(sut.runs(), 0);
    EXPECT_FALSE(sut.isRunning());
}

TEST(ThreadTest, Join_CallsPreStopThenClearsRunningThenCallsPostStop) {
    NotingThread sut;
    sut.start();
    sut.join();
    EXPECT_EQ(sut.stops(), orderlyStop);
    EXPECT_FALSE(sut.isRunning());
}

TEST(ThreadTest, Join_AfterBodyEndedByItself_FindsRunningStillSet) {
    NotingThread sut;
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    EXPECT_TRUE(sut.isRunning());
    sut.join();
    EXPECT_EQ(sut.stops(), orderlyStop);
}

TEST(ThreadTest, Join_SecondTime_DoesNothing) {
    NotingThread sut;
    sut.start();
    sut.join();
    sut.join();
    EXPECT_EQ(sut.stops(), orderlyStop);
}

TEST(ThreadTest, Join_WaitsForBodyToEnd) {
    std::atomic<bool> ended{false};
    NotingThread sut([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ended = true;
    });
    sut.start();
    sut.join();
    EXPECT_TRUE(ended);
}

TEST(ThreadTest, Join_InterruptsBodyAtAnInterruptionPoint) {
    std::atomic<bool> interrupted{false};
    NotingThread sut([&] {
        try {
            boost::this_thread::sleep_for(boost::chrono::hours(1));
        } catch (boost::thread_interrupted const&) {
            interrupted = true;
        }
    });
    sut.start();
    sut.join();
    EXPECT_TRUE(interrupted);
}

TEST(ThreadTest, Join_FromItself_SaysSoAndDetaches) {
    std::promise<void> started;
    std::promise<void> ended;
    NotingThread* self = nullptr;
    NotingThread sut([&] {
        started.get_future().wait();
        self->join();
        ended.set_value();
    });
    self = &sut;
    testing::internal::CaptureStderr();
    sut.start();
    started.set_value();
    ended.get_future().wait();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "other exception ?\n");
    EXPECT_EQ(sut.stops(), orderlyStop);

    // The thread is gone from the object: it can be started again.
    started = std::promise<void>();
    testing::internal::CaptureStdout();
    sut.start();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    ended = std::promise<void>();
    testing::internal::CaptureStderr();
    started.set_value();
    ended.get_future().wait();
    testing::internal::GetCapturedStderr();
}

TEST(ThreadTest, Join_IsNotItselfInterrupted) {
    std::promise<void> release;
    std::atomic<bool> joined{false};
    std::atomic<bool> stillRequested{false};
    NotingThread sut([&] { release.get_future().wait(); });
    sut.start();

    testing::internal::CaptureStderr();
    boost::thread joiner([&] {
        sut.join();
        joined = true;
        stillRequested = boost::this_thread::interruption_requested();
    });
    ASSERT_TRUE(eventually([&] { return !sut.isRunning(); }));
    joiner.interrupt();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(joined);
    release.set_value();
    joiner.join();
    EXPECT_TRUE(joined);
    EXPECT_TRUE(stillRequested);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ThreadTest, Destructor_LetsUnjoinedThreadRunOn) {
    struct Shared {
        std::promise<void> entered;
        std::promise<void> release;
        std::promise<void> ended;
    };
    auto const shared = std::make_shared<Shared>();
    class Detached : public Thread {
    public:
        explicit Detached(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}
        void run() override {
            auto const kept = shared_;
            kept->entered.set_value();
            kept->release.get_future().wait();
            kept->ended.set_value();
        }

    private:
        std::shared_ptr<Shared> shared_;
    };

    auto sut = std::make_unique<Detached>(shared);
    sut->start();
    shared->entered.get_future().wait();
    sut.reset();
    shared->release.set_value();
    EXPECT_EQ(shared->ended.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST(ThreadTest, LeavesTheRoomBehindItsFlagToDerivedClasses) {
    class Flagged : public Thread {
        void run() override {}
        [[maybe_unused]] bool flag_ = false;
        [[maybe_unused]] short number_ = 0;
    };
    static_assert(sizeof(Thread) == 3 * sizeof(void*));
    static_assert(sizeof(Flagged) == sizeof(Thread));
}

TEST(ThreadTest, Join_InAForkedChild_ForgetsTheThreadAndCallsNothing) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    std::promise<void> release;
    NotingThread sut([&] { release.get_future().wait(); });
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    auto const status = inForkedChild([&] {
        sut.join();
        bool const forgotten = !sut.isRunning() && sut.stops().empty();
        sut.join();
        return forgotten && sut.stops().empty() ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(sut.isRunning()) << "in the parent";
    release.set_value();
    sut.join();
    EXPECT_EQ(sut.stops(), orderlyStop);
}

TEST(ThreadTest, Join_InAForkedChild_DoesNotWaitForABodyThatHadEnded) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    if (qel::test::underThreadSanitizer) {
        GTEST_SKIP() << "it demands that the child joins the thread of its parent";
    }
    NotingThread sut;
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    EXPECT_EQ(inForkedChild([&] {
                  sut.join();
                  return sut.stops().empty() ? 0 : 1;
              }),
              0);
    sut.join();
}

TEST(ThreadTest, Destructor_InAForkedChild_LetsGoOfTheThread) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    std::promise<void> release;
    auto sut = std::make_unique<NotingThread>([&] { release.get_future().wait(); });
    sut->start();
    ASSERT_TRUE(sut->waitForRun());
    EXPECT_EQ(inForkedChild([&] {
                  sut.reset();
                  return 0;
              }),
              0);
    release.set_value();
    sut->join();
    EXPECT_EQ(sut->stops(), orderlyStop);
}

TEST(ThreadTest, OfStaticDuration_DoesNotHoldUpTheEndOfAForkedChild) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    struct Joined {
        std::promise<void> release;
        NotingThread thread{[this] {
            release.get_future().wait();
        }};
        ~Joined() { thread.join(); }
    };
    static Joined sut;
    sut.thread.start();
    ASSERT_TRUE(sut.thread.waitForRun());
    EXPECT_EQ(inForkedChild([]() -> int { std::exit(3); }), 3);
    EXPECT_TRUE(sut.thread.isRunning()) << "in the parent";
    sut.release.set_value();
    sut.thread.join();
}

TEST(ThreadTest, Start_InAForkedChild_StartsAThreadOfTheChildsOwn) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    if (qel::test::underThreadSanitizer) {
        GTEST_SKIP() << "it allows no new thread in a child that a process with threads has forked";
    }
    std::promise<void> release;
    pid_t const parent = ::getpid();
    NotingThread sut([&] {
        if (::getpid() == parent) {
            release.get_future().wait();
        }
    });
    sut.start();
    ASSERT_TRUE(sut.waitForRun());
    auto const status = inForkedChild([&] {
        sut.start();
        bool const ran = sut.waitForRun(2);
        sut.join();
        return ran && sut.stops() == orderlyStop ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    release.set_value();
    sut.join();
    EXPECT_EQ(sut.runs(), 1);
}

TEST(ThreadTest, DefaultHooks_DoNothing) {
    class Plain : public Thread {
    public:
        void run() override { ran = true; }
        std::atomic<bool> ran{false};
    };
    Plain sut;
    sut.start();
    sut.join();
    EXPECT_TRUE(sut.ran);
}

} // namespace
