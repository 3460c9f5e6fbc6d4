// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/reader/CountingVisitor.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <gio/gio.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using qel::test::CountingVisitor;
using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::MainLoopThread;
using qel::test::MappedReader;
using testing::ElementsAre;
using testing::IsEmpty;

using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr long long svid(int number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

LogEntry synced(std::string const& count) {
    return {"qel.shm.access.reader", log4cpp::Priority::DEBUG, "syncPositions: modifications = " + count};
}

/// Does something once in the midst of a walk.
class BusyReader : public shm::QelSharedMemoryReader {
public:
    explicit BusyReader(bool isMapped = true) : QelSharedMemoryReader(0, false) {
        if (isMapped) {
            QelSharedMemoryReader::onInitialized();
        }
    }
    void stop(bool isStopped) { stopVisits(isStopped); }

    using QelSharedMemoryReader::onDown;
    bool onDown(Result& /*result*/) override {
        ++lists;
        if (auto const once = std::exchange(duringWalk, nullptr)) {
            once();
        }
        return true;
    }

    std::atomic<int> lists{0}; // two per walk
    std::function<void()> duringWalk;
};

class QelSharedMemoryReaderIndexTest : public testing::Test {
protected:
    QelSharedMemoryReaderIndexTest() {
        for (std::uint32_t const pos : {0U, 5U, 6U, 799U}) {
            region.point(pos, svid(static_cast<int>(pos)));
        }
        region.devices({5, 6});
        region.children(6, {799});
        region.groups({0});
    }

    /// Where a look-up says the point lies, -1 for nowhere.
    int lookUp(long long id, bool force = false) {
        auto const point = sut.mpnt(id, force);
        return point ? static_cast<int>((*point)->pos) : -1;
    }

    void setPos(std::uint32_t slot, std::uint32_t pos) const {
        region.raw().set<std::uint32_t>(qel::test::rawPoint(slot) + qel::test::field::pos, pos);
    }

    ForgedRegion region;
    BusyReader sut;
    LogCapture log;
};

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_FindsPointsOfAllLevelsAndLists) {
    for (int const pos : {0, 5, 6, 799}) {
        EXPECT_EQ(lookUp(svid(pos)), pos);
    }
    EXPECT_EQ(sut.lists, 2) << "one walk serves all look-ups";
    EXPECT_THAT(log.entries(), ElementsAre(synced("0")));
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_UnknownSvid_IsNullAndSilent) {
    EXPECT_EQ(lookUp(svid(5)), 5);
    log.take();
    EXPECT_EQ(lookUp(svid(1)), -1);
    EXPECT_EQ(lookUp(0), -1);
    EXPECT_EQ(lookUp(-1), -1);
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_GivesTheSlotThatThePointNames) {
    setPos(5, 6); // a slot that is being moved
    auto const point = sut.mpnt(svid(5), false);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ((*point)->guid, svid(6));
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_StoredPositionOutOfRange_IsNull) {
    for (std::uint32_t const pos : {800U, 0x80000000U, 0xFFFFFFFFU}) {
        setPos(5, pos);
        EXPECT_EQ(sut.mpnt(svid(5), true), nullptr) << pos;
    }
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_SvidTwice_FindsTheOneVisitedFirst) {
    region.point(0, svid(5)); // a group like the device in slot 5
    EXPECT_EQ(lookUp(svid(5), true), 5);
    region.point(799, svid(6)); // a child like its parent in slot 6
    EXPECT_EQ(lookUp(svid(6), true), 6);
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_SiblingsOfEqualSvid_FindsTheFirstOfThem) {
    region.point(10, svid(10));
    region.point(11, svid(10));
    region.children(6, {11, 10});
    EXPECT_EQ(lookUp(svid(10), true), 11);
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_Handle_IsNeitherPinnedNorUpdated) {
    auto const point = sut.mpnt(svid(5), false);
    ASSERT_NE(point, nullptr);
    region.point(5, svid(77));
    EXPECT_EQ((*point)->guid, svid(77));
    EXPECT_EQ(lookUp(svid(77)), -1) << "not announced yet";
    EXPECT_EQ(lookUp(svid(5)), 5) << "not announced yet";
    EXPECT_EQ(lookUp(svid(77), true), 5);
    EXPECT_EQ(lookUp(svid(5)), -1);
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_Force_RebuildsWithCounterAtZero) {
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(sut.modifications(), 0U);
    EXPECT_EQ(lookUp(svid(5), true), 5);
    EXPECT_EQ(sut.lists, 4);
    EXPECT_THAT(log.entries(), ElementsAre(synced("0"), synced("0")));
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_AfterRegionWasClosed_IsNull) {
    EXPECT_EQ(lookUp(svid(5)), 5);
    sut.closeShm();
    EXPECT_EQ(lookUp(svid(5)), -1);
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_FromWithinARebuild_IsPossible) {
    sut.duringWalk = [&] {
        EXPECT_EQ(lookUp(svid(0)), 0) << "the counter is still raised, so this walks too";
    };
    EXPECT_EQ(lookUp(svid(5)), 5);
}

TEST_F(QelSharedMemoryReaderIndexTest, Mpnt_DuringAnotherThreadsRebuild_WaitsForItsEnd) {
    std::future<int> other;
    sut.duringWalk = [&] {
        other = std::async(std::launch::async, [&] { return lookUp(svid(799)); });
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    };
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(other.get(), 799);
}

TEST_F(QelSharedMemoryReaderIndexTest, SyncPositions_CounterAtZero_DoesNothing) {
    sut.syncPositions(false);
    log.take();
    sut.syncPositions(false);
    EXPECT_EQ(sut.lists, 2);
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryReaderIndexTest, SyncPositions_PutsTheClientsVisitorBack) {
    std::atomic<int> points{0};
    sut.visitor(std::make_unique<CountingVisitor>(points));
    sut.syncPositions(true);
    EXPECT_EQ(points, 0) << "the rebuild is not the client's visit";
    sut.visit();
    EXPECT_EQ(points, 4);

    sut.duringWalk = [] {
        throw std::runtime_error("hook");
    };
    EXPECT_THROW(sut.syncPositions(true), std::runtime_error);
    sut.visit();
    EXPECT_EQ(points, 8);
}

TEST_F(QelSharedMemoryReaderIndexTest, SyncPositions_FailedWalk_KeepsTheCounterRaised) {
    sut.duringWalk = [] {
        throw std::runtime_error("hook");
    };
    EXPECT_THROW(sut.mpnt(svid(5), false), std::runtime_error);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_EQ(lookUp(svid(5)), 5);
}

TEST_F(QelSharedMemoryReaderIndexTest, SyncPositions_IsCalledThroughTheVirtualOperation) {
    class Overriding : public MappedReader {
    public:
        void syncPositions(bool force) override { forced.push_back(force); }
        std::vector<bool> forced;
    };
    Overriding other;
    EXPECT_EQ(other.mpnt(svid(5), false), nullptr);
    EXPECT_EQ(other.mpnt(svid(5), true), nullptr);
    EXPECT_THAT(other.forced, ElementsAre(false, true));
}

TEST_F(QelSharedMemoryReaderIndexTest, SyncPositions_CounterLoweredMeanwhile_StaysAtZero) {
    MappedReader other; // counts once more: 2
    sut.duringWalk = [&] {
        other.syncPositions(false);
    };
    sut.syncPositions(false);
    EXPECT_EQ(log.entries().back(), synced("0"));
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(sut.modifications(), 0U);
}

/// Hands the signal to the handler, on a thread of its own as GLib would.
void announceFromAnotherThread() {
    std::thread([] {
        int connection = 0;
        auto* const none = g_variant_ref_sink(g_variant_new("()"));
        shm::QelSharedMemoryReader::handler(reinterpret_cast<GDBusConnection*>(&connection), ":1.1", "/",
                                            "org.qel.HardwareManager", "shmStructureChanged", none, nullptr);
        g_variant_unref(none);
    }).join();
}

TEST_F(QelSharedMemoryReaderIndexTest, SignalDuringAForcedRebuildFromZero_IsNotLost) {
    sut.syncPositions(false);
    sut.duringWalk = announceFromAnotherThread;
    sut.syncPositions(true);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_EQ(log.entries().back(), synced("0x1"));
    sut.syncPositions(false);
    EXPECT_EQ(sut.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderIndexTest, TwoThreadsThatRebuildForOneChange_LeaveZero) {
    std::future<void> other;
    sut.duringWalk = [&] {
        other = std::async(std::launch::async, [&] { sut.syncPositions(false); });
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    };
    sut.syncPositions(false);
    other.get();
    EXPECT_EQ(sut.modifications(), 0U);
    announceFromAnotherThread();
    EXPECT_EQ(sut.modifications(), 1U) << "it did not wrap";
}

TEST_F(QelSharedMemoryReaderIndexTest, ChangeBetweenTwoRebuilds_ThatBringsTheSameNumberBack_IsNotLost) {
    MappedReader other;
    other.syncPositions(false);
    announceFromAnotherThread();
    sut.duringWalk = [&] {
        other.syncPositions(false);
        announceFromAnotherThread(); // 1 again
    };
    sut.syncPositions(false);
    EXPECT_EQ(sut.modifications(), 1U);
}

TEST_F(QelSharedMemoryReaderIndexTest, ForcedRebuildThatThrows_LeavesTheCounterRaised) {
    sut.syncPositions(false);
    sut.duringWalk = [] {
        throw std::runtime_error("hook");
    };
    EXPECT_THROW(sut.syncPositions(true), std::runtime_error);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(sut.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderIndexTest, ForcedRebuildThatIsStopped_LeavesTheCounterRaised) {
    sut.syncPositions(false);
    sut.duringWalk = [&] {
        std::thread([&] { sut.stop(true); }).join();
    };
    sut.syncPositions(true);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_EQ(log.entries().back(), synced("0x1"));
    EXPECT_EQ(lookUp(svid(5)), -1) << "still stopped";
    EXPECT_EQ(sut.modifications(), 1U);
    sut.stop(false);
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(sut.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderIndexTest, RegionMappedDuringAForcedRebuild_IsNotMissed) {
    BusyReader waiting(false);
    sut.syncPositions(false);
    waiting.duringWalk = [&] {
        std::thread([&] { waiting.onInitialized(); }).join();
    };
    waiting.syncPositions(true);
    EXPECT_EQ(waiting.modifications(), 1U);
    EXPECT_NE(waiting.mpnt(svid(5), false), nullptr);
    EXPECT_EQ(waiting.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderIndexTest,
       VisitorInstalledByAHookOfARebuild_Stays_AndTheRebuildCountsAsUnfinished) {
    std::atomic<int> former{0};
    std::atomic<int> points{0};
    sut.visitor(std::make_unique<CountingVisitor>(former));
    sut.duringWalk = [&] {
        sut.visitor(std::make_unique<CountingVisitor>(points));
    };
    sut.syncPositions(true);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_EQ(lookUp(svid(5)), 5);
    points = 0;
    sut.visit();
    EXPECT_EQ(points, 4);
    EXPECT_EQ(former, 0);
}

TEST_F(QelSharedMemoryReaderIndexTest, OneReadersRebuild_LowersTheCounterForAll) {
    MappedReader other;
    EXPECT_EQ(other.modifications(), 2U);
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(other.modifications(), 0U);
    EXPECT_EQ(other.mpnt(svid(5), false), nullptr) << "its index was never built";
    EXPECT_NE(other.mpnt(svid(5), true), nullptr);
}

TEST(QelSharedMemoryReaderWaitingTest, Mpnt_NothingMapped_IsNullAndLowersTheCounter) {
    shm::QelSharedMemoryReader sut(0, false);
    MainLoopThread const loop;
    FakeHardwareManager service;
    service.emitStructureChanged();
    ASSERT_TRUE(eventually([&] { return sut.modifications() == 1; }));
    LogCapture const log;
    EXPECT_EQ(sut.mpnt(svid(5), false), nullptr);
    EXPECT_EQ(sut.modifications(), 0U);
    EXPECT_EQ(sut.mpnt(svid(5), false), nullptr);
    EXPECT_THAT(log.entries(), ElementsAre(synced("0"))) << "the second look-up walks nothing";

    ForgedRegion const region;
    region.point(5, svid(5));
    region.devices({5});
    sut.onInitialized();
    EXPECT_NE(sut.mpnt(svid(5), false), nullptr);
}

class QelSharedMemoryReaderStructureChangesTest : public QelSharedMemoryReaderIndexTest {
protected:
    QelSharedMemoryReaderStructureChangesTest() {
        sut.syncPositions(false);
        sut.lists = 0;
        log.take();
    }

    void announce() {
        auto const before = sut.modifications();
        service.emitStructureChanged();
        ASSERT_TRUE(eventually([&] { return sut.modifications() == before + 1; }));
    }

    FakeHardwareManager service;
    MainLoopThread loop;
};

TEST_F(QelSharedMemoryReaderStructureChangesTest, Two_LeadToOneRebuild) {
    announce();
    announce();
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(lookUp(svid(6)), 6);
    EXPECT_EQ(sut.lists, 2);
    EXPECT_EQ(sut.modifications(), 0U);
    EXPECT_EQ(log.count(synced("0")), 1U);
}

TEST_F(QelSharedMemoryReaderStructureChangesTest, MovedPoint_IsFoundInItsNewSlot) {
    region.point(20, svid(5));
    region.devices({20, 6});
    EXPECT_EQ(lookUp(svid(5)), 5) << "not announced yet";
    announce();
    EXPECT_EQ(lookUp(svid(5)), 20);
}

TEST_F(QelSharedMemoryReaderStructureChangesTest, DuringARebuild_LeadToOneMore) {
    announce();
    sut.duringWalk = [&] {
        announce();
    };
    sut.syncPositions(false);
    EXPECT_EQ(sut.modifications(), 1U);
    EXPECT_TRUE(log.contains(synced("0x1")));
    EXPECT_EQ(lookUp(svid(5)), 5);
    EXPECT_EQ(sut.lists, 4);
    EXPECT_EQ(sut.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderStructureChangesTest, SeveralDuringARebuild_LowerTheCounterByOneOnly) {
    announce();
    announce();
    sut.duringWalk = [&] {
        announce();
        announce();
    };
    sut.syncPositions(false);
    EXPECT_EQ(sut.modifications(), 3U);
    sut.syncPositions(false);
    EXPECT_EQ(sut.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderStructureChangesTest, WhileManyThreadsLookUp_NothingIsMissed) {
    std::atomic<bool> done{false};
    std::atomic<int> misses{0};
    std::vector<std::thread> clients;
    clients.reserve(4);
    for (int client = 0; client < 4; ++client) {
        clients.emplace_back([&, client] {
            while (!done) {
                misses += sut.mpnt(svid(5), client == 0) == nullptr ? 1 : 0;
                misses += sut.mpnt(svid(799), false) == nullptr ? 1 : 0;
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        service.emitStructureChanged();
    }
    done = true;
    for (auto& client : clients) {
        client.join();
    }
    EXPECT_EQ(misses, 0);
}

} // namespace
