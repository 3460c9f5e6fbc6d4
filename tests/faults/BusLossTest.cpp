// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The bus itself dies: before a reader is built, while it waits, and after it has its region.

#include "reader/QelSharedMemoryReader.h"

#include "format/ValueKeys.h"
#include "reader/QelSharedMemoryFollower.h"
#include "region/Exceptions.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/MortalBus.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/MainLoopThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

namespace {

namespace key = shm::key;
using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::MainLoopThread;
using qel::test::noManager;
using qel::test::noProxy;
using qel::test::opened;
using qel::test::surviveBusLoss;
using shm::QelSharedMemoryReader;
using testing::HasSubstr;

constexpr long long unit = 0x0100FFFFFFFF0000;

LogEntry critical(std::string const& reason) {
    return {"qel.shm.access.reader", log4cpp::Priority::CRIT,
            "QelSharedMemoryReader: Unable to create a proxy to service org.qel.HardwareManager on object "
            "path /" +
                reason};
}

/// The words of the exception that keeps a reader from being built, "" when there is a reader.
std::string whyThereIsNoReader() {
    testing::internal::CaptureStderr();
    std::string words;
    try {
        QelSharedMemoryReader const sut(0, false);
    } catch (ex::TAVSimpleException const& failure) {
        words = failure.what();
    }
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    return words;
}

class BusLoss : public testing::Test {
protected:
    qel::test::MortalBus bus;
    LogCapture log{"qel.shm.access.reader"};
};

TEST_F(BusLoss, BeforeTheReader_IsLoggedAsCriticalAndThrown) {
    bus.kill();
    std::string const reason = ", code = 39, msg = Could not connect: Connection refused";
    EXPECT_THAT(whyThereIsNoReader(), testing::EndsWith(reason));
    EXPECT_TRUE(log.contains(critical(reason)));

    bus.start();
    EXPECT_EQ("", whyThereIsNoReader());
}

TEST_F(BusLoss, WhileWaitingForAnAbsentManager_IsTold_AndTheBusThatComesBackServes) {
    ForgedRegion const region;
    MainLoopThread const loop;
    testing::internal::CaptureStderr();
    QelSharedMemoryReader const sut(600, false);
    surviveBusLoss();
    ASSERT_TRUE(log.waitFor(noManager()));
    bus.kill();
    ASSERT_TRUE(eventually([&] { return log.count(noProxy()) >= 3; }));
    bus.start();
    FakeHardwareManager const service;
    EXPECT_TRUE(log.waitFor(opened()));
    EXPECT_TRUE(sut.root());
    EXPECT_THAT(
        testing::internal::GetCapturedStderr(),
        HasSubstr("The attempt to get a new proxy failed with: Could not connect: Connection refused\n"));
}

TEST_F(BusLoss, DuringACall_EndsTheCall_AndIsToldAtEachPoll) {
    ForgedRegion const region;
    MainLoopThread const loop;
    FakeHardwareManager slow;
    slow.setDelay(60s);
    auto sut = std::make_unique<QelSharedMemoryReader>(600, false);
    surviveBusLoss();
    ASSERT_TRUE(slow.waitForCalls(1));
    bus.kill();
    auto const closed = qel::test::notQueried(", code = 18, msg = The connection is closed");
    EXPECT_TRUE(eventually([&] { return log.count(closed) >= 3; }, 10s));
    EXPECT_FALSE(sut->root());
    sut.reset();

    bus.start();
    FakeHardwareManager const service;
    QelSharedMemoryReader const next(60, false);
    EXPECT_TRUE(log.waitFor(opened()));
}

TEST_F(BusLoss, AfterTheRegionWasMapped_LookUpsGoOn) {
    ForgedRegion const region;
    region.point(5, unit);
    region.values(5, 7, {key::voltage});
    region.devices({5});
    MainLoopThread const loop;
    FakeHardwareManager const service;
    testing::internal::CaptureStderr();
    auto sut = std::make_unique<QelSharedMemoryReader>(60, false);
    surviveBusLoss();
    ASSERT_TRUE(log.waitFor(opened()));
    bus.kill();

    EXPECT_NE(nullptr, sut->mpnt(unit, false));
    EXPECT_NE(nullptr, sut->mpnt(unit, true));
    EXPECT_TRUE(sut->mval(unit | key::voltage, false));
    sut.reset();
    EXPECT_TRUE(log.contains(qel::test::readerInfo("~QelSharedMemoryReader: done")));
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(BusLoss, AfterTheSubscription_NeedsANewReaderOnceTheOldOneIsGone) {
    MainLoopThread const loop;
    auto old = std::make_unique<QelSharedMemoryReader>(0, false);
    surviveBusLoss();
    bus.kill();
    bus.start();
    FakeHardwareManager service;
    service.emitStructureChanged();
    EXPECT_FALSE(eventually([&] { return old->modifications() != 0; }, 300ms))
        << "it does not subscribe anew";

    // The process shares one connection, the dead one, for as long as somebody holds it.
    std::string const reason =
        ", code = 18, msg = Error calling StartServiceByName for org.qel.HardwareManager: "
        "The connection is closed";
    EXPECT_THAT(whyThereIsNoReader(), testing::EndsWith(reason));
    EXPECT_TRUE(log.contains(critical(reason)));

    old.reset();
    std::optional<QelSharedMemoryReader> next;
    next.emplace(0U, false);
    service.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return next->modifications() == 1; }));
}

TEST_F(BusLoss, UnderAFollower_ServesOn_AndHearsAgainWithTheBus) {
    ForgedRegion const region;
    region.point(5, unit);
    region.values(5, 7, {key::voltage});
    region.devices({5});
    region.activate();
    MainLoopThread const loop;
    auto manager = std::make_unique<FakeHardwareManager>();
    shm::QelSharedMemoryFollower sut(60, shm::ANY_AGE);
    ASSERT_TRUE(eventually([&] { return sut.reader() != nullptr; }));
    surviveBusLoss();
    bus.kill();
    EXPECT_FALSE(eventually([&] { return sut.reader() == nullptr; }, 1500ms)) << "the region is as it was";
    EXPECT_TRUE(sut.mval(unit | key::voltage));

    bus.start();
    manager = std::make_unique<FakeHardwareManager>();
    EXPECT_TRUE(eventually([&] {
        auto* const reader = sut.reader();
        auto const before = reader == nullptr ? 0 : reader->modifications();
        manager->emitStructureChanged();
        return reader != nullptr && eventually([&] { return reader->modifications() > before; }, 100ms);
    }));
    EXPECT_TRUE(sut.mval(unit | key::voltage));
}

std::atomic<int> terminations{0};

TEST_F(BusLoss, WithGLibsDefault_IsATerminationSignalToTheProcess) {
    struct sigaction former = {};
    struct sigaction counting = {};
    counting.sa_handler = [](int) {
        ++terminations;
    };
    ASSERT_EQ(0, ::sigaction(SIGTERM, &counting, &former));
    {
        MainLoopThread const loop;
        QelSharedMemoryReader const sut(0, false);
        bus.kill();
        EXPECT_TRUE(eventually([&] { return terminations != 0; }));
    }
    ::sigaction(SIGTERM, &former, nullptr);
    EXPECT_EQ(1, terminations);
}

} // namespace
