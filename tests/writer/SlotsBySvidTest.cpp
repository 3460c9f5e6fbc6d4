// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/SlotsBySvid.h"

#include "format/ValueKeys.h"
#include "tests/support/FailureSeams.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <new>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr std::size_t values = 8800; // positions from here on are none

} // namespace

TEST(SlotsBySvidTest, NewIndex_KnowsNoPoint) {
    shm::SlotsBySvid const sut;
    EXPECT_EQ(nullptr, sut.find(0));
    EXPECT_EQ(nullptr, sut.find(-1));
}

TEST(SlotsBySvidTest, ValuePosition_FindsEachKeyAndNoOther) {
    shm::SlotsBySvid sut;
    shm::MPDef definition(799, {{key::guid, 7}, {key::voltage, 8799}, {key::temperature, 3}, {0xFFFF, 4}});
    sut.add(1, definition);
    auto const* const point = sut.find(1);
    ASSERT_NE(nullptr, point);
    EXPECT_EQ(7U, point->valuePosition(key::guid));
    EXPECT_EQ(8799U, point->valuePosition(key::voltage));
    EXPECT_GE(point->valuePosition(key::peakVoltage), values);
    EXPECT_EQ(3U, point->valuePosition(key::temperature));
    EXPECT_EQ(4U, point->valuePosition(0xFFFF));
    EXPECT_GE(point->valuePosition(key::voltageMeasuredAtSocketLevel), values);
}

TEST(SlotsBySvidTest, ValuePosition_OfAPointWithoutValues_IsNone) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(3, {});
    sut.add(1, definition);
    for (unsigned int key = 0; key <= 0xFFFF; ++key) {
        EXPECT_GE(sut.find(1)->valuePosition(static_cast<std::uint16_t>(key)), values);
    }
}

TEST(SlotsBySvidTest, ValuePosition_AgreesWithAMapForRandomKeys) {
    auto random = randomNumbers(11);
    shm::SlotsBySvid sut;
    shm::MPDef definition(3, {});
    sut.add(1, definition);
    // Up to the 91 keys of one point, of a narrow range or any.
    for (int step = 0; step < 400; ++step) {
        unsigned int const range = step % 2 == 0 ? 0x100 : 0x10000;
        if (definition.mvs.size() > 90) {
            definition.mvs.clear();
            sut.removeValues(definition);
        }
        auto const newKey = static_cast<std::uint16_t>(random() % range);
        if (definition.mvs.emplace(newKey, static_cast<unsigned int>(step)).second) {
            sut.pointOf(definition)->reserve(definition.mvs.size());
            sut.pointOf(definition)->insert(newKey, static_cast<std::size_t>(step));
        }
        for (unsigned int key = 0; key <= 0xFFFF; ++key) {
            auto const known = definition.mvs.find(static_cast<std::uint16_t>(key));
            auto const found = sut.find(1)->valuePosition(static_cast<std::uint16_t>(key));
            if (known == definition.mvs.end() ? found < values : found != known->second) {
                FAIL() << "step " << step << ", key " << key << ": " << found;
            }
        }
    }
}

TEST(SlotsBySvidTest, InsertedValue_IsFound_BesideThoseBefore) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(5, {{key::voltage, 10}});
    sut.add(1, definition);
    EXPECT_GE(sut.find(1)->valuePosition(key::current), values);

    sut.pointOf(definition)->reserve(2);
    sut.pointOf(definition)->insert(4, 11);

    EXPECT_EQ(11U, sut.find(1)->valuePosition(key::current));
    EXPECT_EQ(10U, sut.find(1)->valuePosition(key::voltage));
}

TEST(SlotsBySvidTest, RoomOnceMade_NeedsNoMemoryLater) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(5, {});
    sut.add(1, definition, 91);
    auto const before = allocations();
    for (std::uint16_t key = 0; key < 91; ++key) {
        sut.pointOf(definition)->reserve(key + std::size_t{1});
        sut.pointOf(definition)->insert(key, key);
    }
    EXPECT_EQ(before, allocations());
    EXPECT_EQ(90U, sut.find(1)->valuePosition(90));
}

TEST(SlotsBySvidTest, Reserve_WithoutMemory_LeavesTheValuesAsTheyAre) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(5, {{key::voltage, 10}, {key::humidity, 11}});
    sut.add(1, definition);
    {
        MemoryRunsOut const none(0);
        EXPECT_THROW(sut.pointOf(definition)->reserve(1000), std::bad_alloc);
    }
    EXPECT_EQ(10U, sut.find(1)->valuePosition(key::voltage));
    EXPECT_EQ(11U, sut.find(1)->valuePosition(key::humidity));
    EXPECT_GE(sut.find(1)->valuePosition(key::peakVoltage), values);
}

TEST(SlotsBySvidTest, Add_WithoutMemory_DoesNotKnowThePoint) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(5, {{key::voltage, 10}});
    {
        MemoryRunsOut const none(0);
        EXPECT_THROW(sut.add(1, definition), std::bad_alloc);
    }
    EXPECT_EQ(nullptr, sut.find(1));
    EXPECT_FALSE(sut.isTaken(5));
    EXPECT_EQ(nullptr, sut.pointOf(definition));
}

TEST(SlotsBySvidTest, PointOf_KnowsADefinitionByItself_NotByItsContent) {
    shm::SlotsBySvid sut;
    shm::MPDef const definition(5, {});
    shm::MPDef const copy(5, {});
    sut.add(1, definition);
    EXPECT_EQ(sut.find(1), sut.pointOf(definition));
    EXPECT_EQ(nullptr, sut.pointOf(copy));
    EXPECT_EQ(nullptr, sut.pointOf(shm::MPDef()));
    EXPECT_TRUE(sut.isTaken(5));
    EXPECT_EQ(1, sut.svidAt(5));
    EXPECT_FALSE(sut.isTaken(4));
}

TEST(SlotsBySvidTest, Remove_OfAnUnknownPoint_ChangesNothing) {
    shm::SlotsBySvid sut;
    shm::MPDef definition(0, {});
    sut.add(1, definition);
    sut.remove(2);
    EXPECT_NE(nullptr, sut.find(1));
}

TEST(SlotsBySvidTest, RandomAddsAndRemoves_AgreeWithAMap) {
    auto random = randomNumbers(7);
    shm::SlotsBySvid sut;
    std::map<long long, shm::MPDef> expected;
    for (int step = 0; step < 5000; ++step) {
        auto const pos = static_cast<unsigned int>(random() % 800);
        auto const svid = pointId(static_cast<int>(pos % 7), 0, static_cast<int>(pos / 7), 1);
        auto const known = expected.find(svid);
        if (known == expected.end()) {
            auto& definition = expected[svid];
            definition =
                shm::MPDef(pos, {{key::voltage, pos}, {static_cast<std::uint16_t>(pos + 2), pos + 1000}});
            sut.add(svid, definition);
        } else {
            sut.remove(svid);
            expected.erase(known);
        }
        ASSERT_EQ(expected.count(svid) == 1, sut.find(svid) != nullptr);
    }
    for (auto const& [svid, definition] : expected) {
        auto const* const found = sut.find(svid);
        ASSERT_NE(nullptr, found);
        EXPECT_EQ(definition.pos, found->pos());
        EXPECT_EQ(&definition.mutex, &found->mutex());
        EXPECT_EQ(definition.pos, found->valuePosition(key::voltage));
        EXPECT_EQ(definition.pos + 1000,
                  found->valuePosition(static_cast<std::uint16_t>(definition.pos + 2)));
    }
}

TEST(SlotsBySvidTest, Generation_ChangesWithEachRemoval_AndIsOneOfAKind) {
    shm::SlotsBySvid sut;
    shm::SlotsBySvid const other;
    shm::MPDef const definition(3, {{1, 5}});
    EXPECT_NE(0U, sut.generation());
    EXPECT_NE(other.generation(), sut.generation());

    auto const first = sut.generation();
    sut.add(0x10000, definition);
    sut.remove(0x20000); // unknown
    EXPECT_EQ(first, sut.generation());

    sut.removeValues(definition);
    auto const withoutValues = sut.generation();
    EXPECT_LT(first, withoutValues);

    sut.remove(0x10000);
    EXPECT_LT(withoutValues, sut.generation());
}

} // namespace qel::test
