// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryReader.h"

#include "region/Exceptions.h"
#include "tests/reader/BusFailures.h"
#include "tests/reader/NoMoreThreads.h"
#include "tests/reader/SleepRecorder.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"

#include <boost/thread/exceptions.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::MainLoopThread;
using qel::test::sharedConnection;
using qel::test::SleepRecorder;
using shm::QelSharedMemoryReader;
using testing::ElementsAre;

LogEntry info(std::string const& text) {
    return {"qel.shm.access.reader", log4cpp::Priority::INFO, text};
}
LogEntry debug(std::string const& text) {
    return {"qel.shm.access.reader", log4cpp::Priority::DEBUG, text};
}
LogEntry access(std::string const& text) {
    return {"qel.shm.access", log4cpp::Priority::INFO, text};
}

LogEntry notQueried(std::string const& detail) {
    return debug("initialized: failed to query initialization state" + detail);
}

constexpr char unknownService[] =
    ", code = 2, msg = GDBus.Error:org.freedesktop.DBus.Error.ServiceUnknown: The name "
    "org.qel.HardwareManager was not provided by any .service files";

static_assert(std::is_base_of_v<shm::QelSharedMemoryAccess, QelSharedMemoryReader>);
static_assert(std::is_base_of_v<shm::IQelShmInitCallback, QelSharedMemoryReader>);

TEST(QelSharedMemoryReaderTest, Life_IsLogged) {
    LogCapture log;
    auto sut = std::make_unique<QelSharedMemoryReader>(0, false);
    auto const start = log.take();
    sut.reset();
    auto const end = log.take();

    ASSERT_EQ(start.size(), 3U);
    EXPECT_EQ(start[0], access("QelSharedMemoryAccess: start"));
    EXPECT_EQ(start[1], info("QelSharedMemoryReader: start"));
    std::string const subscribed = "QelSharedMemoryReader: subscribed to signal shmStructureChanged, id = ";
    EXPECT_EQ(start[2].level, log4cpp::Priority::DEBUG);
    EXPECT_EQ(start[2].category, "qel.shm.access.reader");
    EXPECT_THAT(start[2].text, testing::StartsWith(subscribed + "0x"));
    auto const id = start[2].text.substr(subscribed.size());
    EXPECT_THAT(
        end,
        ElementsAre(debug("~QelSharedMemoryReader: unsubscribed from signal shmStructureChanged, id = " + id),
                    info("~QelSharedMemoryReader: done"), access("~QelSharedMemoryAccess: done")));
}

TEST(QelSharedMemoryReaderTest, Constructor_SubscriptionId_IsHexadecimal) {
    auto const connection = sharedConnection();
    LogCapture log;
    bool seenLetter = false;
    for (int i = 0; i < 16; ++i) { // each reader takes at least one id, so one of these has a letter in it
        log.take();
        QelSharedMemoryReader const sut(0, false);
        auto const text = log.take().at(2).text;
        auto const id = text.substr(text.rfind(' ') + 1);
        EXPECT_THAT(id, testing::MatchesRegex("0x[0-9a-f]+"));
        seenLetter = seenLetter || id.find_first_of("abcdef", 2) != std::string::npos;
    }
    EXPECT_TRUE(seenLetter);
}

TEST(QelSharedMemoryReaderTest, Constructor_BusUnreachable_LogsAndThrows) {
    static constexpr char text[] =
        "Unable to create a proxy to service org.qel.HardwareManager on object path /, code = 1, "
        "msg = Could not connect: No such file or directory";
    qel::test::UnreachableBus const down;
    LogCapture const log;
    testing::internal::CaptureStderr();
    try {
        QelSharedMemoryReader const sut(0, false);
        ADD_FAILURE() << "there is a reader";
    } catch (ex::TAVSimpleException const& failure) {
        EXPECT_STREQ(failure.what(), text);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_THAT(log.entries(),
                ElementsAre(access("QelSharedMemoryAccess: start"), info("QelSharedMemoryReader: start"),
                            LogEntry{"qel.shm.access.reader", log4cpp::Priority::CRIT,
                                     std::string("QelSharedMemoryReader: ") + text},
                            access("~QelSharedMemoryAccess: done")));
}

TEST(QelSharedMemoryReaderTest, Constructor_WithoutThreadToGet_ThrowsAndLeavesNoSubscription) {
    auto const connection = sharedConnection(); // its worker thread must be there before threads run short
    MainLoopThread const loop;
    FakeHardwareManager service;
    LogCapture const log;
    {
        qel::test::NoMoreThreads const shortage;
        EXPECT_THROW(QelSharedMemoryReader(1, false), boost::thread_resource_error);
    }
    EXPECT_EQ(log.entries().back(), access("~QelSharedMemoryAccess: done"));

    QelSharedMemoryReader const other(0, false);
    service.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return other.modifications() != 0; }));
    EXPECT_EQ(other.modifications(), 1U);
}

TEST(QelSharedMemoryReaderTest, Constructor_BudgetBeyondTenMinutes_IsCutForPollsOnly) {
    SleepRecorder const time;
    FakeHardwareManager service;
    service.setAnswer(0);
    QelSharedMemoryReader const sut(1000, true);
    EXPECT_EQ(sut.polls(), 2400U);
    EXPECT_EQ(SleepRecorder::count(1s), 1000U);
}

TEST(QelSharedMemoryReaderTest, Constructor_WaitForRegionWithoutSeconds_DoesNotWait) {
    SleepRecorder const time;
    QelSharedMemoryReader const sut(0, true);
    EXPECT_EQ(SleepRecorder::count(1s), 0U);
}

TEST(QelSharedMemoryReaderTest, Constructor_NotToWait_DoesNotWait) {
    SleepRecorder const time;
    QelSharedMemoryReader const sut(5, false);
    EXPECT_EQ(SleepRecorder::count(1s), 0U);
}

TEST(QelSharedMemoryReaderTest, Constructor_RegionActive_ReturnsEarly) {
    ForgedRegion const region;
    region.activate();
    FakeHardwareManager const service;
    auto const start = std::chrono::steady_clock::now();
    QelSharedMemoryReader const sut(120, true);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
    EXPECT_TRUE(sut.root());
}

TEST(QelSharedMemoryReaderTest, Constructor_RegionMappedButInactive_WaitsOutItsSeconds) {
    ForgedRegion const region;
    FakeHardwareManager const service;
    LogCapture const log;
    auto const start = std::chrono::steady_clock::now();
    QelSharedMemoryReader const sut(2, true);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_TRUE(sut.root());
    EXPECT_EQ(log.entries().back(), debug("onInitialized: modifications = 0x1"));
}

TEST(QelSharedMemoryReaderTest, Constructor_RegionBecomesActiveWhileWaiting_Returns) {
    ForgedRegion const region;
    FakeHardwareManager const service;
    std::thread writer([&] {
        std::this_thread::sleep_for(500ms);
        region.activate();
    });
    auto const start = std::chrono::steady_clock::now();
    QelSharedMemoryReader const sut(120, true);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 500ms);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
    writer.join();
}

TEST(QelSharedMemoryReaderTest, WaitThread_HardwareManagerInitialized_MapsRegion) {
    ForgedRegion const region;
    region.point(5, 0x0100000000000000);
    region.devices({5});
    region.activate();
    FakeHardwareManager service;
    LogCapture const log;
    QelSharedMemoryReader sut(60, false);
    ASSERT_TRUE(log.waitFor(debug("onInitialized: modifications = 0x1")));
    EXPECT_TRUE(log.contains(info("run: Initialized after 0.0s, opening shared memory")));
    EXPECT_EQ(service.calls(), 1U);
    auto const point = sut.mpnt(0x0100000000000000, false);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ((*point)->pos, 5U);
}

TEST(QelSharedMemoryReaderTest, WaitThread_InitializedAtFifthPoll_ToldAsOneSecond) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setAnswer([](unsigned int call) { return call == 5 ? 1 : 0; });
    LogCapture const log;
    QelSharedMemoryReader const sut(60, false);
    EXPECT_TRUE(log.waitFor(info("run: Initialized after 1.0s, opening shared memory")));
    EXPECT_EQ(service.calls(), 5U);
}

TEST(QelSharedMemoryReaderTest, WaitThread_HardwareManagerAppearsLater_MapsRegion) {
    ForgedRegion const region;
    LogCapture const log;
    QelSharedMemoryReader const sut(60, false);
    ASSERT_TRUE(log.waitFor(notQueried(unknownService)));
    FakeHardwareManager const service;
    EXPECT_TRUE(log.waitFor(debug("onInitialized: modifications = 0x1")));
    EXPECT_TRUE(sut.root());
}

TEST(QelSharedMemoryReaderTest, WaitThread_WithoutBudget_NeverAsks) {
    ForgedRegion const region;
    region.activate();
    FakeHardwareManager const service;
    {
        QelSharedMemoryReader const sut(0, false);
        EXPECT_FALSE(sut.root());
    }
    EXPECT_EQ(service.calls(), 0U);
}

TEST(QelSharedMemoryReaderTest, WaitThread_BudgetRunsOut_LeavesReaderWaiting) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setAnswer([](unsigned int call) { return call <= 4 ? 0 : 1; });
    QelSharedMemoryReader sut(1, false);
    ASSERT_TRUE(service.waitForCalls(4));
    std::this_thread::sleep_for(700ms);
    EXPECT_EQ(service.calls(), 4U);
    EXPECT_FALSE(sut.root());
    EXPECT_EQ(sut.mpnt(0, true), nullptr);
}

TEST(QelSharedMemoryReaderTest, Initialized_AnswerOne_IsTrueAndSilent) {
    FakeHardwareManager const service;
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    EXPECT_TRUE(sut.initialized());
    EXPECT_TRUE(log.entries().empty());
}

TEST(QelSharedMemoryReaderTest, Initialized_AnyOtherAnswer_IsFalseAndSilent) {
    FakeHardwareManager service;
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    for (int const answer : {0, 2, -1, 257}) {
        service.setAnswer(answer);
        EXPECT_FALSE(sut.initialized()) << answer;
    }
    EXPECT_TRUE(log.entries().empty());
}

TEST(QelSharedMemoryReaderTest, Initialized_ErrorReply_IsToldWithDecimalCode) {
    FakeHardwareManager service;
    service.setError("not yet");
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    EXPECT_FALSE(sut.initialized());
    EXPECT_THAT(log.entries(),
                ElementsAre(notQueried(", code = 36, msg = GDBus.Error:org.qel.Error: not yet")));
}

TEST(QelSharedMemoryReaderTest, Initialized_NoHardwareManager_CallsAnywayAfterThreeProxies) {
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    SleepRecorder const time;
    EXPECT_FALSE(sut.initialized());
    EXPECT_THAT(log.entries(), ElementsAre(notQueried(unknownService)));
    EXPECT_EQ(SleepRecorder::count(123ms), 3U);
}

TEST(QelSharedMemoryReaderTest, Initialized_BusGone_IsToldAndRecoversWithTheBus) {
    LogCapture log;
    QelSharedMemoryReader sut(0, false);
    qel::test::closeSharedConnection();
    log.take();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(sut.initialized());
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::HasSubstr("The attempt to get a new proxy failed with: "));
    EXPECT_THAT(log.entries(), ElementsAre(notQueried(", code = 24, msg = The proxy creation failed")));

    FakeHardwareManager const service;
    EXPECT_TRUE(eventually([&] { return sut.initialized(); }));
}

TEST(QelSharedMemoryReaderTest, Destructor_WithoutProxy_EndsNoSubscription) {
    LogCapture log;
    auto sut = std::make_unique<QelSharedMemoryReader>(0, false);
    qel::test::closeSharedConnection();
    EXPECT_FALSE(sut->initialized());
    log.take();
    sut.reset();
    EXPECT_THAT(log.entries(),
                ElementsAre(info("~QelSharedMemoryReader: done"), access("~QelSharedMemoryAccess: done")));
}

TEST(QelSharedMemoryReaderTest, Destructor_HardwareManagerAbsent_ReturnsAfterOnePoll) {
    LogCapture const log;
    auto sut = std::make_unique<QelSharedMemoryReader>(600, false);
    ASSERT_TRUE(log.waitFor(notQueried(unknownService)));
    auto const start = std::chrono::steady_clock::now();
    sut.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    EXPECT_LE(log.count(notQueried(unknownService)), 2U);
}

TEST(QelSharedMemoryReaderTest, Destructor_DuringCall_WaitsForItsEnd) {
    ForgedRegion const region;
    FakeHardwareManager service;
    service.setDelay(1s);
    LogCapture const log;
    auto sut = std::make_unique<QelSharedMemoryReader>(600, false);
    ASSERT_TRUE(service.waitForCalls(1));
    sut.reset();
    // The answer of that call still counts.
    EXPECT_EQ(log.count(info("run: Initialized after 0.0s, opening shared memory")), 1U);
    EXPECT_EQ(log.entries().back(), access("~QelSharedMemoryAccess: done"));
}

TEST(QelSharedMemoryReaderTest, Destructor_UnmapsButKeepsTheObject) {
    ForgedRegion const region;
    {
        QelSharedMemoryReader sut(0, false);
        sut.onInitialized();
        ASSERT_TRUE(sut.root());
    }
    EXPECT_TRUE(qel::test::rawRegionExists());
}

TEST(QelSharedMemoryReaderTest, OnInitialized_MapsRegionAndCounts) {
    ForgedRegion const region;
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;
    EXPECT_FALSE(sut.root());
    sut.onInitialized();
    EXPECT_TRUE(sut.root());
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_THAT(log.entries(), ElementsAre(debug("onInitialized: modifications = 0x1")));
}

TEST(QelSharedMemoryReaderTest, OnInitialized_SecondTime_OnlyWarns) {
    ForgedRegion const region;
    QelSharedMemoryReader sut(0, false);
    sut.onInitialized();
    auto const* const mapped = &*sut.root();
    LogCapture const log;
    sut.onInitialized();
    EXPECT_EQ(&*sut.root(), mapped);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{"qel.shm.access.reader", log4cpp::Priority::WARN,
                                                    "onInitialized: don't call this method directly"}));
}

TEST(QelSharedMemoryReaderTest, OnInitialized_NoObject_CountsAllTheSame) {
    QelSharedMemoryReader sut(0, false);
    sut.onInitialized();
    EXPECT_FALSE(sut.root());
    EXPECT_EQ(sut.modifications(), 1U);

    ForgedRegion const region; // too late: the reader asks once
    sut.onInitialized();
    EXPECT_FALSE(sut.root());
}

} // namespace
