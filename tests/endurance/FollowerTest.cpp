// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A following reader whose writer ends over and over: as it should, and killed.

#include "reader/QelSharedMemoryFollower.h"

#include "format/ValueKeys.h"
#include "tests/endurance/BusWatch.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/Rounds.h"
#include "tests/system/Peers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace qel::test {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long voltage = inlet | shm::key::voltage;

/// What the machine's other work may add to the second within which a new writer is followed.
constexpr std::chrono::seconds tolerance{5};

class WriterComesAndGoes : public testing::Test {
protected:
    /// Starts a writer whose one value is the number of the run, and follows it. Until it is active, the follower shows
    /// nothing.
    void startAndFollow(bool looksMeanwhile) {
        ++run_;
        writer_ = std::make_unique<Writer>();
        for (auto const& line :
             {std::string("add 0x0100ffffffff0000"), std::string("add 0x010001ffffff0000 1"),
              "update 0x010001ffffff0000 1 " + std::to_string(run_) + " 0", std::string("answer 1")}) {
            writer_->ask(line);
            if (looksMeanwhile) {
                expectNothing();
            }
        }
        auto const activation = Clock::now();
        writer_->ask("active");
        ASSERT_TRUE(eventually([this] { return showsThisRun(); }, tolerance)) << "run " << run_;
        latencies_.push_back(std::chrono::duration_cast<milliseconds>(Clock::now() - activation));
    }

    bool showsThisRun() {
        auto const found = sut_.mval(voltage);
        if (found) {
            EXPECT_EQ(run_, found->value) << "of an ended writer";
        }
        return static_cast<bool>(found);
    }

    void expectNothing() {
        EXPECT_FALSE(sut_.mval(voltage));
        EXPECT_FALSE(sut_.mval(kept_));
        EXPECT_FALSE(sut_.mpnt(inlet));
        EXPECT_EQ(nullptr, sut_.reader());
        EXPECT_NE(shm::QelShmCondition::Active, sut_.condition());
    }

    void expectThisRun() {
        auto const kept = sut_.mval(kept_);
        ASSERT_TRUE(kept);
        EXPECT_EQ(run_, kept->value);
        EXPECT_TRUE(sut_.mpnt(inlet));
    }

    /// Both ways of ending; the end is over when they return.
    void endCleanly() {
        writer_->process().writeLine("quit");
        ASSERT_EQ(0, writer_->process().wait());
    }
    void kill() {
        writer_->process().signal(SIGKILL);
        ASSERT_EQ(128 + SIGKILL, writer_->process().wait());
    }

    /// In every second round nobody looks between the end of a writer and the activation of the next one.
    template <typename End>
    void follow(int rounds, End const& end) {
        startAndFollow(false); // what a process gets once, it has
        auto const before = ownResources();
        auto const sources = attachedSources();
        auto const rules = bus_.matchRules();
        for (int round = 0; round < rounds && !HasFatalFailure(); ++round) {
            bool const looksMeanwhile = round % 2 == 0;
            expectThisRun();
            end();
            if (looksMeanwhile) {
                expectNothing();
            }
            startAndFollow(looksMeanwhile);
        }
        EXPECT_EQ(rounds, voided_);
        EXPECT_TRUE(eventually([&] { return ownResources() == before && attachedSources() == sources; }))
            << ownResources() << ", before: " << before << "; " << attachedSources()
            << " sources, before: " << sources;
        EXPECT_TRUE(eventually([&] { return bus_.matchRules() == rules; }));
        report();
    }

    void report() {
        std::sort(latencies_.begin(), latencies_.end());
        auto const within = std::count_if(latencies_.begin(), latencies_.end(),
                                          [](milliseconds latency) { return latency <= milliseconds(1000); });
        std::cout << run_ << " writers: followed within " << latencies_.at(latencies_.size() / 2).count()
                  << " ms (median), " << latencies_.back().count() << " ms (most); " << within << " of "
                  << latencies_.size() << " within a second\n";
    }

    MainLoopThread const loop_;
    LogCapture const quiet_{"qel", log4cpp::Priority::WARN};
    BusWatch bus_;
    std::unique_ptr<Writer> writer_;
    int run_ = 0;
    int voided_ = 0;
    shm::QelShmKeptMVal kept_{voltage};
    std::vector<milliseconds> latencies_;
    shm::QelSharedMemoryFollower sut_{60, shm::ANY_AGE, [this](shm::QelShmCondition) {
                                          ++voided_;
                                      }};
};

TEST_F(WriterComesAndGoes, EndedAndStartedAnew_IsFollowed) {
    follow(rounds(20, 1000), [this] { endCleanly(); });
}

TEST_F(WriterComesAndGoes, KilledAndStartedAnew_IsFollowed) {
    follow(rounds(20, 1000), [this] { kill(); });
}

} // namespace

} // namespace qel::test
