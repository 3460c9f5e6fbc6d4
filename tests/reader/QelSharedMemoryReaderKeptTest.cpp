// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/ValueKeys.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/RandomNumbers.h"

#include <gtest/gtest.h>

#include <gio/gio.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <future>
#include <numeric>
#include <thread>
#include <vector>

namespace {

namespace key = shm::key;
using qel::test::ForgedRegion;
using qel::test::MappedReader;

constexpr long long pointId = 0x0100FFFFFFFF0000;
constexpr long long otherId = 0x0200FFFFFFFF0000;

/// The signal as GLib hands it over; the connection is only compared with null.
void announceChange() {
    int connection = 0;
    auto* const none = g_variant_ref_sink(g_variant_new("()"));
    shm::QelSharedMemoryReader::handler(reinterpret_cast<GDBusConnection*>(&connection), ":1.1", "/",
                                        "org.qel.HardwareManager", "shmStructureChanged", none, nullptr);
    g_variant_unref(none);
}

/// A point with the keys 1, 4 and 0xFFFF in the value slots from 10 on, and another one with key 1 in 20.
class QelSharedMemoryReaderKeptTest : public testing::Test {
protected:
    QelSharedMemoryReaderKeptTest() {
        region.point(3, pointId);
        region.values(3, 10, {key::voltage, key::current, 0xFFFF});
        region.point(4, otherId);
        region.values(4, 20, {key::voltage});
        region.devices({3, 4});
        for (std::uint32_t slot = 0; slot < 30; ++slot) {
            region.raw().set<double>(qel::test::rawValue(slot), slot);
        }
    }

    /// Number of the value, which is its slot's; -1 for none.
    double number(shm::QelShmKeptMVal& kept) { return numberOf(sut.mval(kept)); }
    static double numberOf(shm::QelShmMVal const& value) { return value ? value->value : -1; }

    ForgedRegion region;
    MappedReader sut;
};

TEST_F(QelSharedMemoryReaderKeptTest, Mval_FindsEachValueByItsSvid) {
    EXPECT_EQ(10, numberOf(sut.mval(pointId | key::voltage, false)));
    EXPECT_EQ(11, numberOf(sut.mval(pointId | key::current, false)));
    EXPECT_EQ(12, numberOf(sut.mval(pointId | 0xFFFF, false)));
    EXPECT_EQ(20, numberOf(sut.mval(otherId | key::voltage, false)));
}

TEST_F(QelSharedMemoryReaderKeptTest, Mval_UnknownPointOrKey_IsNull) {
    EXPECT_FALSE(sut.mval(otherId | key::current, false));
    EXPECT_FALSE(sut.mval(pointId, false));
    EXPECT_FALSE(sut.mval(1, false));
}

TEST_F(QelSharedMemoryReaderKeptTest, Mval_SeveralValuesOfAKey_GivesTheFirst) {
    region.values(3, 10, {key::current, key::voltage, key::voltage});
    EXPECT_EQ(11, numberOf(sut.mval(pointId | key::voltage, false)));
}

TEST_F(QelSharedMemoryReaderKeptTest, Mval_Force_FollowsAnUnannouncedChange) {
    EXPECT_EQ(10, numberOf(sut.mval(pointId | key::voltage, false)));
    region.point(5, pointId);
    region.values(5, 25, {key::voltage});
    region.devices({5});
    EXPECT_EQ(-1, numberOf(sut.mval(pointId | key::voltage, false)))
        << "the tree does not hold the known slot any more";
    EXPECT_EQ(25, numberOf(sut.mval(pointId | key::voltage, true)));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_ShowsTheSlotsPresentNumber) {
    shm::QelShmKeptMVal kept(pointId | key::current);
    EXPECT_EQ(pointId | key::current, kept.svid());
    EXPECT_EQ(11, number(kept));
    region.raw().set<double>(qel::test::rawValue(11), 111);
    EXPECT_EQ(111, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_WhileTheStructureStands_LooksNothingUp) {
    shm::QelShmKeptMVal kept(pointId | key::current);
    EXPECT_EQ(11, number(kept));
    auto const before = qel::test::locks();
    EXPECT_EQ(11, number(kept));
    EXPECT_EQ(before, qel::test::locks());
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_ChainThatLeadsElsewhere_IsFollowedUnannounced) {
    shm::QelShmKeptMVal kept(pointId | key::current);
    EXPECT_EQ(11, number(kept));
    region.values(3, 20, {key::current});
    EXPECT_EQ(20, number(kept)) << "the slot still bears the key, the chain does not hold it";
    region.values(3, 20, {});
    EXPECT_EQ(-1, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, SlotOfAnotherPoint_IsNotTaken) {
    EXPECT_EQ(10, numberOf(sut.mval(pointId | key::voltage, false)));
    region.point(3, 0x0300FFFFFFFF0000);
    EXPECT_EQ(-1, numberOf(sut.mval(pointId | key::voltage, false)));
}

TEST_F(QelSharedMemoryReaderKeptTest, PointOutOfItsList_IsNotTaken) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    region.devices({4});
    EXPECT_EQ(-1, number(kept));
    EXPECT_EQ(-1, numberOf(sut.mval(pointId | key::voltage, false)));
    region.devices({4, 3});
    EXPECT_EQ(10, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, NeighbourBeingInserted_LeavesTheValueFound) {
    shm::QelShmKeptMVal kept(otherId | key::voltage);
    EXPECT_EQ(20, number(kept));
    auto const& raw = region.raw();
    region.point(5, 0x0300FFFFFFFF0000);
    raw.set<std::uint32_t>(qel::test::rawPoint(5) + qel::test::field::next, 4);
    raw.set<std::uint32_t>(qel::test::rawPoint(5) + qel::test::field::prev, 3);
    raw.set<std::uint32_t>(qel::test::rawPoint(3) + qel::test::field::next,
                           5); // the link back from 4 is still the old one
    EXPECT_EQ(20, number(kept));
    EXPECT_EQ(20, numberOf(sut.mval(otherId | key::voltage, false)));
}

TEST_F(QelSharedMemoryReaderKeptTest, CircularChain_WithoutTheKey_Ends) {
    region.raw().set<std::uint32_t>(qel::test::rawValue(12) + qel::test::field::valueNext, 10);
    EXPECT_EQ(-1, numberOf(sut.mval(pointId | key::peakVoltage, false)));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_AnnouncedChange_IsLookedUpAnew) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    region.values(3, 22, {key::voltage});
    announceChange();
    EXPECT_EQ(22, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_RemovedPointWhoseSlotStands_IsTold) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    shm::QelShmKeptMVal other(otherId | key::voltage);
    EXPECT_EQ(10, number(kept));
    EXPECT_EQ(20, number(other));
    region.devices({4});
    announceChange();
    EXPECT_EQ(20, number(other)) << "this one builds the index anew";
    EXPECT_EQ(-1, number(kept)) << "the slot still holds the point, the tree does not";
    region.devices({3, 4});
    announceChange();
    EXPECT_EQ(10, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_SlotOfAnotherPoint_IsNotTaken) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    region.point(3, otherId);
    EXPECT_NE(nullptr, sut.mpnt(pointId, false)) << "a look-up by the index takes it";
    sut.syncPositions(true);
    EXPECT_EQ(-1, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_SlotOfAnotherKey_IsLookedUpAnew) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    region.values(3, 10, {key::differentialCurrentAc, key::current, key::voltage});
    EXPECT_EQ(12, number(kept)) << "no announcement is needed for this";
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_RegionClosed_IsNull) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    sut.closeShm();
    EXPECT_EQ(-1, number(kept));
    sut.openShm();
    EXPECT_EQ(10, number(kept));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_Copy_GoesItsOwnWay) {
    shm::QelShmKeptMVal kept(pointId | key::voltage);
    EXPECT_EQ(10, number(kept));
    auto copy = kept;
    kept = shm::QelShmKeptMVal(otherId | key::voltage);
    EXPECT_EQ(20, number(kept));
    EXPECT_EQ(10, number(copy));
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_InSeveralThreads_EachFindsItsOwn) {
    auto const readAll = [&](long long svid, double expected) {
        shm::QelShmKeptMVal kept(svid);
        bool isRight = true;
        for (int round = 0; round < 2000; ++round) {
            if (round % 500 == 0) {
                sut.syncPositions(true);
            }
            isRight = number(kept) == expected && isRight;
        }
        return isRight;
    };
    auto first = std::async(std::launch::async, readAll, pointId | key::voltage, 10);
    auto second = std::async(std::launch::async, readAll, otherId | key::voltage, 20);
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

TEST_F(QelSharedMemoryReaderKeptTest, Kept_BesideAThreadThatRebuilds_FindsItsOwn) {
    std::atomic<bool> isDone{false};
    std::thread rebuilding([&] {
        for (int round = 0; round < 2000; ++round) {
            announceChange();
            sut.syncPositions(false);
        }
        isDone = true;
    });
    shm::QelShmKeptMVal kept(pointId | key::current);
    int wrong = 0;
    while (!isDone) {
        wrong += number(kept) == 11 ? 0 : 1;
    }
    rebuilding.join();
    EXPECT_EQ(0, wrong);
}

TEST_F(QelSharedMemoryReaderKeptTest, RandomStructures_AgreeWithTheListOfValues) {
    auto random = qel::test::randomNumbers(3);
    constexpr int points = 12;
    std::vector<shm::QelShmKeptMVal> kept;
    for (int number = 0; number < points; ++number) {
        for (int key = 0; key < 6; ++key) {
            kept.emplace_back((number * 0x10000LL) | key);
        }
    }
    std::vector<std::uint32_t> slots(40);
    std::iota(slots.begin(), slots.end(), 0U);
    for (int round = 0; round < 300; ++round) {
        // Some of the points, in any slots, each with some of the keys in the 6 value slots from 6 * slot on.
        std::shuffle(slots.begin(), slots.end(), random);
        std::vector<std::uint32_t> used;
        for (int number = 0; number < points; ++number) {
            if (random() % 4 == 0) {
                continue;
            }
            auto const slot = slots[static_cast<std::size_t>(number)];
            std::vector<std::uint16_t> keys;
            for (std::uint16_t key = 0; key < 6; ++key) {
                if (random() % 3 != 0) {
                    keys.push_back(key);
                }
            }
            std::shuffle(keys.begin(), keys.end(), random);
            region.point(slot, number * 0x10000LL);
            region.values(slot, slot * 6, keys);
            used.push_back(slot);
        }
        region.devices(used);
        announceChange();
        for (auto& one : kept) {
            void const* expected = nullptr;
            if (auto const point = sut.mpnt(one.svid() & ~0xFFFFLL, false)) {
                for (auto const& value : sut.mvs((*point)->mvs)) {
                    if (value->key == (one.svid() & 0xFFFF)) {
                        expected = &*value;
                    }
                }
            }
            for (int use = 0; use < 2; ++use) {
                auto const value = sut.mval(one);
                ASSERT_EQ(expected, value ? &*value : nullptr) << "round " << round << ", " << one.svid();
            }
            auto const looked = sut.mval(one.svid(), false);
            ASSERT_EQ(expected, looked ? &*looked : nullptr);
        }
    }
}

} // namespace
