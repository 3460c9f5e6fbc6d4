// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/PositionStack.h"

#include "region/QelShmRecords.h"
#include "tests/support/FailureSeams.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace {

using Positions = std::vector<std::uint16_t>;

struct Slot {
    std::uint32_t next;
};

/// A table of slots and a stack for its lists.
class PositionStackTest : public testing::Test {
protected:
    ~PositionStackTest() override { sut.release(); }

    void chain(Positions const& positions) {
        for (std::size_t i = 0; i < positions.size(); ++i) {
            slots[positions[i]].next = i + 1 < positions.size() ? positions[i + 1] : shm::NO_POSITION;
        }
    }

    void collect(shm::PositionList& list, std::uint32_t first) const {
        list.collect(slots.data(), static_cast<std::uint32_t>(slots.size()), first);
    }

    static Positions told(shm::PositionList const& list) {
        Positions positions;
        for (auto place = list.firstPlace(); place != list.endPlace(); ++place) {
            positions.push_back(list.at(place));
        }
        return positions;
    }

    shm::PositionStack sut;
    std::vector<Slot> slots = std::vector<Slot>(800, Slot{shm::NO_POSITION});
};

TEST_F(PositionStackTest, List_HoldsWhatTheLinksLedTo_WhateverBecomesOfThem) {
    chain({7, 3, 799, 0});
    shm::PositionList list(sut);
    collect(list, 7);
    chain({7, 1});
    EXPECT_EQ((Positions{7, 3, 799, 0}), told(list));
}

TEST_F(PositionStackTest, NoPosition_GivesAnEmptyList) {
    shm::PositionList list(sut);
    collect(list, 800);
    EXPECT_TRUE(told(list).empty());
}

TEST_F(PositionStackTest, Circle_EndsAfterAsManyAsThereAreSlots) {
    slots[5].next = 5;
    shm::PositionList list(sut);
    collect(list, 5);
    EXPECT_EQ(Positions(800, 5), told(list));
}

TEST_F(PositionStackTest, YoungerLists_LeaveTheOlderOnesAlone_AlsoWhenTheMemoryGrows) {
    slots[5].next = 5;
    chain({1, 2});
    shm::PositionList first(sut);
    collect(first, 1);
    std::vector<std::unique_ptr<shm::PositionList>> younger;
    for (int i = 0; i < 40; ++i) {
        younger.push_back(std::make_unique<shm::PositionList>(sut));
        collect(*younger.back(), 5);
    }
    while (!younger.empty()) {
        younger.pop_back();
    }
    EXPECT_EQ((Positions{1, 2}), told(first));
}

TEST_F(PositionStackTest, SecondUse_AllocatesNothing) {
    chain({1, 2});
    { collect(*std::make_unique<shm::PositionList>(sut), 1); }
    auto const before = qel::test::allocations();
    {
        shm::PositionList list(sut);
        collect(list, 1);
        shm::PositionList other(sut);
        collect(other, 2);
    }
    EXPECT_EQ(before, qel::test::allocations());
}

TEST_F(PositionStackTest, NoMemory_IsThrown_AndLeavesTheListsAsTheyWere) {
    chain({1, 2});
    slots[5].next = 5;
    shm::PositionList list(sut);
    collect(list, 1);
    std::vector<std::unique_ptr<shm::PositionList>> younger;
    younger.reserve(40);
    bool isThrown = false;
    for (int i = 0; i < 40 && !isThrown; ++i) {
        younger.push_back(std::make_unique<shm::PositionList>(sut));
        qel::test::MemoryRunsOut const out(0);
        try {
            collect(*younger.back(), 5);
        } catch (std::bad_alloc const&) {
            isThrown = true;
        }
    }
    EXPECT_TRUE(isThrown);
    while (!younger.empty()) {
        younger.pop_back();
    }
    EXPECT_EQ((Positions{1, 2}), told(list));
}

} // namespace
