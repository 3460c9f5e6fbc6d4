// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmPoint.h"

#include "format/Print.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/ForgedRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <vector>

namespace {

using qel::test::ForgedRegion;
using qel::test::MappedReader;
using testing::ElementsAre;

constexpr long long svid(std::uint32_t number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

/// Device 1 with the children 2, 3 and 7; below 3: 9 and 5; below 7: 8. Values: one of 5.
class QelShmPointTest : public testing::Test {
protected:
    QelShmPointTest() {
        for (std::uint32_t const pos : {1U, 2U, 3U, 5U, 7U, 8U, 9U}) {
            region.point(pos, svid(pos));
        }
        region.devices({1});
        region.children(1, {2, 3, 7});
        region.children(3, {9, 5});
        region.children(7, {8});
        region.values(5, 40, {19});
    }

    ForgedRegion region;
    MappedReader reader;
};

TEST_F(QelShmPointTest, Ancestor_IsThePointOfThePathAtThatLevel) {
    std::vector<std::vector<std::uint32_t>> paths;
    for (auto const& sut : reader.points()) {
        paths.emplace_back();
        for (unsigned int level = 1; level <= sut.depth(); ++level) {
            paths.back().push_back(sut.ancestor(level)->pos);
        }
    }
    using Path = std::vector<std::uint32_t>;
    EXPECT_THAT(paths, ElementsAre(Path{1}, Path{1, 2}, Path{1, 3}, Path{1, 3, 5}, Path{1, 3, 9}, Path{1, 7},
                                   Path{1, 7, 8}));
}

TEST_F(QelShmPointTest, Ancestor_OfNoLevelOfThePath_IsNull) {
    for (auto const& sut : reader.points()) {
        EXPECT_FALSE(sut.ancestor(0));
        EXPECT_FALSE(sut.ancestor(sut.depth() + 1));
        EXPECT_FALSE(sut.ancestor(0xFFFFFFFF));
    }
}

TEST_F(QelShmPointTest, Fields_AreThoseOfTheSlot) {
    region.raw().set<std::uint8_t>(qel::test::rawPoint(1) + qel::test::field::pointType, 3);
    region.raw().set<std::int32_t>(qel::test::rawPoint(1) + qel::test::field::pointState, 17);
    auto range = reader.points();
    auto const sut = *range.begin();
    EXPECT_EQ(svid(1), sut.svid());
    EXPECT_EQ(3, sut.type());
    EXPECT_EQ(eStatus_On, sut.state());
    EXPECT_EQ(&*sut, &sut.record());
    EXPECT_EQ(1U, sut.depth());
}

TEST_F(QelShmPointTest, Copy_StaysValidAfterTheScan) {
    shm::QelShmPoint copy;
    EXPECT_FALSE(copy);
    for (auto const& sut : reader.points()) {
        if (sut->pos == 5) {
            copy = sut;
        }
    }
    EXPECT_EQ(svid(5), copy.svid());
    EXPECT_EQ(3U, copy.depth());
    int values = 0;
    for (auto const& value : copy.values()) {
        EXPECT_EQ(19, value->key);
        ++values;
    }
    EXPECT_EQ(1, values);
}

TEST_F(QelShmPointTest, Point_IsPrintedAsItsHandle) {
    auto range = reader.points();
    auto const sut = *range.begin();
    std::ostringstream point;
    std::ostringstream handle;
    point << sut;
    handle << shm::QelShmMPnt(&*sut);
    EXPECT_EQ(handle.str(), point.str());
}

} // namespace
