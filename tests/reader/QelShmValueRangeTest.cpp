// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmValueRange.h"

#include "tests/support/FailureSeams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <numeric>
#include <type_traits>
#include <vector>

namespace {

using shm::QelShmValueRange;
using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;

/// A wiped region with chains of values.
class QelShmValueRangeTest : public testing::Test {
protected:
    QelShmValueRangeTest() { std::memset(static_cast<void*>(region.get()), 0xFF, sizeof *region); }

    void chain(Positions const& positions, std::uint32_t behind = shm::NO_POSITION) const {
        for (std::size_t i = 0; i < positions.size(); ++i) {
            region->values[positions[i]].next = i + 1 < positions.size() ? positions[i + 1] : behind;
        }
    }

    Positions shown(std::uint32_t first) const {
        Positions positions;
        for (auto const& value : QelShmValueRange(*region, first)) {
            positions.push_back(static_cast<std::uint32_t>(&*value - region->values));
        }
        return positions;
    }

    static Positions sideBySide(std::uint32_t first, std::uint32_t count) {
        Positions positions(count);
        std::iota(positions.begin(), positions.end(), first);
        return positions;
    }

    std::unique_ptr<shm::record::Region> region = std::make_unique<shm::record::Region>();
};

TEST_F(QelShmValueRangeTest, ChainSideBySide_IsShownWhole_WhateverItsLengthAndPlace) {
    for (std::uint32_t count = 1; count < 40; ++count) {
        for (auto const first : {0U, 1U, 4000U, 8800U - count - 1U, 8800U - count}) {
            auto const positions = sideBySide(first, count);
            chain(positions);
            EXPECT_EQ(positions, shown(first)) << count << " values from " << first;
        }
    }
}

TEST_F(QelShmValueRangeTest, WholeTable_IsShown) {
    auto const positions = sideBySide(0, 8800);
    chain(positions, 8800);
    EXPECT_EQ(positions, shown(0));
}

TEST_F(QelShmValueRangeTest, ChainInParts_IsShownInItsOrder) {
    Positions const positions{8798, 8799, 12, 13, 11, 5000, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 8790};
    chain(positions, 8800);
    EXPECT_EQ(positions, shown(8798));
}

TEST_F(QelShmValueRangeTest, ChainDownwards_IsShownWhole) {
    auto positions = sideBySide(0, 8800);
    std::reverse(positions.begin(), positions.end());
    chain(positions);
    EXPECT_EQ(positions, shown(8799));
}

TEST_F(QelShmValueRangeTest, PositionOutOfTheTable_IsNoValue) {
    for (auto const none : {8800U, 8801U, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        EXPECT_TRUE(shown(none).empty()) << none;
        chain({3, 4, 9}, none);
        EXPECT_THAT(shown(3), ElementsAre(3, 4, 9)) << none;
    }
}

TEST_F(QelShmValueRangeTest, LastSlotWithALinkBehindTheTable_EndsTheChain) {
    chain(sideBySide(8780, 20), 8800);
    EXPECT_EQ(sideBySide(8780, 20), shown(8780));
    EXPECT_EQ(sideBySide(8799, 1), shown(8799));
}

TEST_F(QelShmValueRangeTest, Circle_EndsAfterAsManyAsThereAreSlots) {
    chain({5}, 5);
    EXPECT_EQ(Positions(8800, 5), shown(5));
    chain(sideBySide(0, 8800), 0);
    EXPECT_EQ(sideBySide(0, 8800), shown(0));
    chain({20, 21, 22, 40}, 20);
    EXPECT_EQ(8800U, shown(20).size());
}

TEST_F(QelShmValueRangeTest, LaterChanges_DoNotCutTheValuesSideBySide) {
    chain(sideBySide(100, 30));
    Positions positions;
    for (auto const& value : QelShmValueRange(*region, 100)) {
        auto const pos = static_cast<std::uint32_t>(&*value - region->values);
        positions.push_back(pos);
        std::memset(static_cast<void*>(&region->values[pos]), 0xFF, sizeof *region->values);
        if (pos < 111) {
            std::memset(static_cast<void*>(&region->values[pos + 1]), 0xFF, sizeof *region->values);
        }
    }
    EXPECT_EQ(sideBySide(100, 30), positions);
}

TEST_F(QelShmValueRangeTest, Iterator_ServesTheAlgorithms) {
    using Iterator = QelShmValueRange::Iterator;
    using Traits = std::iterator_traits<Iterator>;
    static_assert(std::is_same_v<Traits::iterator_category, std::input_iterator_tag>);
    static_assert(std::is_same_v<Traits::value_type, shm::QelShmMVal>);
    static_assert(std::is_same_v<Traits::reference, shm::QelShmMVal const&>);
    chain({3, 4, 9});
    region->values[4].key = 7;
    QelShmValueRange const range(*region, 3);
    auto const found =
        std::find_if(range.begin(), range.end(), [](auto const& value) { return value->key == 7; });
    EXPECT_EQ(&region->values[4], &**found);
    EXPECT_TRUE(found->operator bool());
    EXPECT_EQ(3, std::distance(range.begin(), range.end()));
    auto current = range.begin();
    EXPECT_EQ(&region->values[3], &**current++);
    EXPECT_EQ(&region->values[4], &**current);
    EXPECT_TRUE(current == found);
    EXPECT_TRUE(++current != found);
    EXPECT_TRUE(++current == range.end());
    EXPECT_TRUE(Iterator() == range.end());
}

TEST_F(QelShmValueRangeTest, Scan_AllocatesNothing) {
    chain({8798, 8799, 12, 13, 11});
    auto const before = qel::test::allocations();
    int count = 0;
    for ([[maybe_unused]] auto const& value : QelShmValueRange(*region, 8798)) {
        ++count;
    }
    EXPECT_EQ(5, count);
    EXPECT_EQ(before, qel::test::allocations());
}

} // namespace
