#include "writer/PointIndex.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace qel::test {

namespace {

constexpr std::size_t values = 8800; // positions from here on are none

using Points = std::map<long long, shm::MPDef>;

void expectSame(Points const& expected, shm::PointIndex const& sut, long long svid) {
    auto const known = expected.find(svid);
    auto const* const found = sut.find(svid);
    ASSERT_EQ(known != expected.end(), found != nullptr);
    if (found != nullptr) {
        EXPECT_EQ(known->second.pos, found->pos());
        EXPECT_EQ(&known->second.mutex, &found->mutex());
    }
}

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
    Points expected;
    // Ids of a few levels, so that many differ in one byte only; full tables included.
    auto const anyLevel = [&](unsigned int count) {
        return static_cast<int>(random() % count);
    };
    auto const anyId = [&] {
        return pointId(anyLevel(3), 0, anyLevel(200), anyLevel(4));
    };
    std::vector<unsigned int> freePositions;
    for (unsigned int pos = 0; pos < 800; ++pos) {
        freePositions.push_back(pos);
    }
    bool wasFull = false;
    for (int step = 0; step < 20000; ++step) {
        auto const svid = anyId();
        bool const grows = step / 2000 % 2 == 0 ? random() % 8 != 0 : random() % 8 == 0;
        auto const known = expected.find(svid);
        if (grows && known == expected.end() && !freePositions.empty()) {
            auto& definition = expected[svid];
            definition.pos = freePositions.back();
            freePositions.pop_back();
            sut.add(svid, definition);
        } else if (!grows && known != expected.end()) {
            sut.remove(svid);
            freePositions.push_back(known->second.pos);
            expected.erase(known);
        }
        wasFull = wasFull || freePositions.empty();
        expectSame(expected, sut, svid);
        expectSame(expected, sut, anyId());
    }
    EXPECT_TRUE(wasFull);
    for (auto const& point : expected) {
        expectSame(expected, sut, point.first);
    }
}

} // namespace qel::test
