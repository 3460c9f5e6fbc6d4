// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reader ends in time, whatever the hardware manager and the bus do.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/MortalBus.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/MainLoopThread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using qel::test::FakeHardwareManager;
using qel::test::LogCapture;
using Clock = std::chrono::steady_clock;

enum class Manager { Absent, AnswersZero, RepliesError, InACall, Initialized };

struct State {
    std::string name;
    Manager manager;
    bool busKilled;

    friend std::ostream& operator<<(std::ostream& out, State const& state) { return out << state.name; }
};

constexpr auto slowAnswer = 2s;

class Destruction : public testing::TestWithParam<State> {
protected:
    Destruction() {
        if (GetParam().manager != Manager::Absent) {
            service = std::make_unique<FakeHardwareManager>();
        }
        if (GetParam().manager == Manager::AnswersZero) {
            service->setAnswer(0);
        } else if (GetParam().manager == Manager::RepliesError) {
            service->setError("no");
        } else if (GetParam().manager == Manager::InACall) {
            service->setDelay(slowAnswer);
        }
    }

    /// True as soon as the reader is in the state that the parameter names.
    bool isThere() const {
        switch (GetParam().manager) {
        case Manager::Absent:
            return log.waitFor(qel::test::noManager());
        case Manager::AnswersZero:
        case Manager::RepliesError:
            return service->waitForCalls(2);
        case Manager::InACall:
            return service->waitForCalls(1);
        case Manager::Initialized:
            return log.waitFor(qel::test::opened());
        }
        return false;
    }

    qel::test::MortalBus bus;
    qel::test::ForgedRegion const region;
    LogCapture log{"qel.shm.access"};
    std::unique_ptr<FakeHardwareManager> service;
};

TEST_P(Destruction, InThisState_TakesAPauseAndACallAtMost) {
    qel::test::MainLoopThread const loop;
    auto sut = std::make_unique<shm::QelSharedMemoryReader>(600, false);
    qel::test::surviveBusLoss();
    ASSERT_TRUE(isThere());
    if (GetParam().busKilled) {
        bus.kill();
    }
    auto const begin = Clock::now();
    sut.reset();
    auto const taken = Clock::now() - begin;

    RecordProperty("ms", static_cast<int>(taken / 1ms));
    EXPECT_LT(taken, 10s);
    if (GetParam().manager == Manager::InACall && !GetParam().busKilled) {
        EXPECT_GE(taken, slowAnswer - 500ms) << "the call under way ends first";
    }
    EXPECT_EQ(log.entries().back(), (qel::test::LogEntry{"qel.shm.access", log4cpp::Priority::INFO,
                                                         "~QelSharedMemoryAccess: done"}));
    EXPECT_TRUE(qel::test::rawRegionExists());
}

INSTANTIATE_TEST_SUITE_P(ManagerAndBus, Destruction,
                         testing::Values(State{"Absent", Manager::Absent, false},
                                         State{"AnswersZero", Manager::AnswersZero, false},
                                         State{"RepliesError", Manager::RepliesError, false},
                                         State{"InACall", Manager::InACall, false},
                                         State{"Initialized", Manager::Initialized, false},
                                         State{"Absent_BusKilled", Manager::Absent, true},
                                         State{"AnswersZero_BusKilled", Manager::AnswersZero, true},
                                         State{"RepliesError_BusKilled", Manager::RepliesError, true},
                                         State{"InACall_BusKilled", Manager::InACall, true},
                                         State{"Initialized_BusKilled", Manager::Initialized, true}),
                         [](auto const& instance) { return instance.param.name; });

} // namespace
