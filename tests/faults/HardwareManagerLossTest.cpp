// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The hardware manager answers late, wrongly or not at all, dies and comes back, while the bus lives.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/Rounds.h"
#include "tests/system/Peers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::MainLoopThread;
using qel::test::noManager;
using qel::test::notQueried;
using qel::test::opened;
using qel::test::readerInfo;
using Clock = std::chrono::steady_clock;
/// The hardware side as a process: serves the hardware manager's interface and keeps the region.
using HardwareSide = qel::test::Writer;

TEST(HardwareManagerLoss, AnswersOfZero_AreAskedAgainWithoutAWord) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setAnswer([](unsigned int call) { return call == 4 ? 1 : 0; });
    shm::QelSharedMemoryReader sut(60, false);
    LogCapture const log("qel.shm.access.reader");
    ASSERT_TRUE(log.waitFor(opened()));
    EXPECT_THAT(
        log.entries(),
        testing::ElementsAre(readerInfo("run: Initialized after 0.8s, opening shared memory"), opened()));
    EXPECT_EQ(4U, service.calls());
}

TEST(HardwareManagerLoss, ErrorReplies_AreToldOneByOne_UntilOneSucceeds) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setError("still starting");
    LogCapture const log("qel.shm.access.reader");
    shm::QelSharedMemoryReader const sut(60, false);
    auto const refused = notQueried(", code = 36, msg = GDBus.Error:org.qel.Error: still starting");
    ASSERT_TRUE(eventually([&] { return log.count(refused) == 3; }));
    EXPECT_FALSE(sut.root());
    service.setError("");
    ASSERT_TRUE(log.waitFor(opened()));
    EXPECT_TRUE(sut.root());
    EXPECT_EQ(service.calls() - 1, log.count(refused));
}

TEST(HardwareManagerLoss, SlowReply_IsWaitedForInTheBackground) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setDelay(2s);
    LogCapture const log("qel.shm.access.reader");
    auto const begin = Clock::now();
    shm::QelSharedMemoryReader sut(60, false);
    EXPECT_FALSE(sut.root());
    EXPECT_EQ(nullptr, sut.mpnt(0, false)) << "the client is served meanwhile";
    ASSERT_TRUE(log.waitFor(opened()));
    EXPECT_GE(Clock::now() - begin, 2s);
    EXPECT_TRUE(log.contains(readerInfo("run: Initialized after 0.0s, opening shared memory")))
        << "polls are told";
    EXPECT_EQ(1U, service.calls());
}

TEST(HardwareManagerLoss, NameGivenUpAndTakenAgain_IsFollowed) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setAnswer(0);
    LogCapture const log("qel.shm.access.reader");
    MainLoopThread const loop;
    shm::QelSharedMemoryReader const sut(60, false);
    ASSERT_TRUE(service.waitForCalls(2));
    service.releaseName();
    ASSERT_TRUE(log.waitFor(noManager()));
    service.setAnswer(1);
    service.ownName();
    ASSERT_TRUE(log.waitFor(opened()));
    service.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return sut.modifications() == 2; }))
        << "the subscription outlived the renewals";
}

TEST(HardwareManagerLoss, KilledDuringACall_IsTold_AndTheNextOneServesTheSameReader) {
    std::optional<HardwareSide> hardware(std::in_place);
    LogCapture const log("qel.shm.access.reader");
    MainLoopThread const loop;
    shm::QelSharedMemoryReader const sut(60, false);
    hardware->process().signal(SIGSTOP);
    std::this_thread::sleep_for(600ms); // a poll is on its way by now
    hardware->process().signal(SIGKILL);
    EXPECT_TRUE(
        log.waitFor(notQueried(", code = 4, msg = GDBus.Error:org.freedesktop.DBus.Error.NoReply: Message "
                               "recipient disconnected from message bus without replying")));
    EXPECT_TRUE(log.waitFor(noManager()));
    EXPECT_FALSE(sut.root());

    hardware.reset();
    hardware.emplace();
    EXPECT_EQ("done", hardware->ask("active"));
    EXPECT_EQ("done", hardware->ask("answer 1"));
    ASSERT_TRUE(log.waitFor(opened()));
    EXPECT_EQ("done", hardware->ask("signal"));
    EXPECT_TRUE(eventually([&] { return sut.modifications() == 2; }));
}

TEST(HardwareManagerLoss, RestartedAfterTheRegionWasMapped_ItsSignalsStillCount) {
    ForgedRegion const region;
    MainLoopThread const loop;
    auto service = std::make_unique<FakeHardwareManager>();
    shm::QelSharedMemoryReader sut(60, false);
    ASSERT_TRUE(eventually([&] { return sut.modifications() == 1; }));
    for (unsigned int restart = 1; restart <= 3; ++restart) {
        service.reset();
        EXPECT_EQ(nullptr, sut.mpnt(1, true)) << "look-ups need no hardware manager";
        EXPECT_EQ(0U, sut.modifications());
        service = std::make_unique<FakeHardwareManager>();
        service->emitStructureChanged();
        EXPECT_TRUE(eventually([&] { return sut.modifications() == 1; })) << restart;
    }
}

// With endurance asked for, the hardware manager hangs until the call's time is over; in brief it comes back.
TEST(HardwareManagerLoss, Hanging_HoldsTheReadersEndUpToTheTimeOfACall) {
    HardwareSide hardware;
    LogCapture const log("qel.shm.access.reader");
    auto sut = std::make_unique<shm::QelSharedMemoryReader>(600, false);
    hardware.process().signal(SIGSTOP);
    std::this_thread::sleep_for(600ms); // a poll is on its way by now
    bool const forGood = qel::test::rounds(0, 1) == 1;
    std::thread awakener([&] {
        if (!forGood) {
            std::this_thread::sleep_for(1500ms);
            hardware.process().signal(SIGCONT);
        }
    });
    auto const begin = Clock::now();
    sut.reset();
    auto const taken = Clock::now() - begin;
    awakener.join();
    RecordProperty("ms", static_cast<int>(taken / 1ms));
    if (forGood) {
        EXPECT_GE(taken, 55s);
        EXPECT_LT(taken, 60s + 250ms + 10s);
        EXPECT_TRUE(log.contains(notQueried(", code = 24, msg = Timeout was reached")));
    } else {
        EXPECT_GE(taken, 1500ms);
        EXPECT_LT(taken, 20s);
        EXPECT_FALSE(log.contains(opened())) << "the answer was 0";
    }
}

} // namespace
