#include "writer/PointIndex.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>

namespace qel::test {

namespace {

constexpr std::size_t values = 8800; // positions from here on are none

} // namespace

TEST(PointIndexTest, NewIndex_KnowsNoPoint) {
    shm::PointIndex const sut;
    EXPECT_EQ(nullptr, sut.find(0));
    EXPECT_EQ(nullptr, sut.find(-1));
}

TEST(PointIndexTest, ValuePosition_FindsEachKeyAndNoOther) {
    shm::PointIndex sut;
    shm::MPDef definition(799, {{0, 7}, {1, 8799}, {0x100, 3}, {0xFFFF, 4}});
    sut.add(1, definition);
    auto const* const point = sut.find(1);
    ASSERT_NE(nullptr, point);
    EXPECT_EQ(7U, point->valuePosition(0));
    EXPECT_EQ(8799U, point->valuePosition(1));
    EXPECT_GE(point->valuePosition(2), values);
    EXPECT_EQ(3U, point->valuePosition(0x100));
    EXPECT_EQ(4U, point->valuePosition(0xFFFF));
    EXPECT_GE(point->valuePosition(0xFFFE), values);
}

TEST(PointIndexTest, ValuePosition_OfAPointWithoutValues_IsNone) {
    shm::PointIndex sut;
    shm::MPDef const definition(3, {});
    sut.add(1, definition);
    for (unsigned int key = 0; key <= 0xFFFF; ++key) {
        EXPECT_GE(sut.find(1)->valuePosition(static_cast<std::uint16_t>(key)), values);
    }
}

TEST(PointIndexTest, ValuePosition_AgreesWithAMapForRandomKeys) {
    auto random = randomNumbers(11);
    shm::PointIndex sut;
    shm::MPDef definition(3, {});
    sut.add(1, definition);
    // Up to the 91 keys of one point, of a narrow range or any.
    for (int step = 0; step < 400; ++step) {
        unsigned int const range = step % 2 == 0 ? 0x100 : 0x10000;
        if (definition.mvs.size() > 90) {
            definition.mvs.clear();
        }
        definition.mvs[static_cast<std::uint16_t>(random() % range)] = static_cast<unsigned int>(step);
        sut.update(definition);
        for (unsigned int key = 0; key <= 0xFFFF; ++key) {
            auto const known = definition.mvs.find(static_cast<std::uint16_t>(key));
            auto const found = sut.find(1)->valuePosition(static_cast<std::uint16_t>(key));
            if (known == definition.mvs.end() ? found < values : found != known->second) {
                FAIL() << "step " << step << ", key " << key << ": " << found;
            }
        }
    }
}

TEST(PointIndexTest, Update_TakesOverNewValues) {
    shm::PointIndex sut;
    shm::MPDef definition(5, {{1, 10}});
    sut.add(1, definition);
    definition.mvs[4] = 11;
    EXPECT_GE(sut.find(1)->valuePosition(4), values);
    sut.update(definition);
    EXPECT_EQ(11U, sut.find(1)->valuePosition(4));
}

TEST(PointIndexTest, Remove_OfAnUnknownPoint_ChangesNothing) {
    shm::PointIndex sut;
    shm::MPDef definition(0, {});
    sut.add(1, definition);
    sut.remove(2);
    EXPECT_NE(nullptr, sut.find(1));
}

TEST(PointIndexTest, RandomAddsAndRemoves_AgreeWithAMap) {
    auto random = randomNumbers(7);
    shm::PointIndex sut;
    std::map<long long, shm::MPDef> expected;
    for (int step = 0; step < 5000; ++step) {
        auto const pos = static_cast<unsigned int>(random() % 800);
        auto const svid = pointId(static_cast<int>(pos % 7), 0, static_cast<int>(pos / 7), 1);
        auto const known = expected.find(svid);
        if (known == expected.end()) {
            auto& definition = expected[svid];
            definition = shm::MPDef(pos, {{1, pos}, {static_cast<std::uint16_t>(pos + 2), pos + 1000}});
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
        EXPECT_EQ(definition.pos, found->valuePosition(1));
        EXPECT_EQ(definition.pos + 1000,
                  found->valuePosition(static_cast<std::uint16_t>(definition.pos + 2)));
    }
}

} // namespace qel::test
