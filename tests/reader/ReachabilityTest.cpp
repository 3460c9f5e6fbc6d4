// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/Reachability.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using shm::NO_POSITION;

/// A region in the heap, wiped, with lists as a writer links them.
class ReachabilityTest : public testing::Test {
protected:
    ReachabilityTest() { std::memset(region.get(), 0xFF, sizeof *region); }

    void list(std::uint32_t& head, std::uint32_t parent, std::vector<std::uint32_t> const& positions) {
        head = positions.front();
        for (std::size_t i = 0; i < positions.size(); ++i) {
            auto& point = region->points[positions[i]];
            point.parent = parent;
            point.prev = i == 0 ? NO_POSITION : positions[i - 1];
            point.next = i + 1 == positions.size() ? NO_POSITION : positions[i + 1];
        }
    }

    std::unique_ptr<shm::record::Region> region = std::make_unique<shm::record::Region>();
};

TEST_F(ReachabilityTest, PointsInLists_AreReferredAndListed) {
    list(region->root.devices, NO_POSITION, {0, 799});
    list(region->root.groups, NO_POSITION, {5});
    list(region->points[5].children, 5, {6, 7, 8});
    for (std::uint32_t const pos : {0U, 799U, 5U, 6U, 7U, 8U}) {
        EXPECT_TRUE(shm::isLinkedToByPredecessor(*region, pos)) << pos;
        EXPECT_TRUE(shm::isInSiblingList(*region, pos)) << pos;
    }
    EXPECT_FALSE(shm::isLinkedToByPredecessor(*region, 1));
    EXPECT_FALSE(shm::isInSiblingList(*region, 1));
}

TEST_F(ReachabilityTest, PointThatKeepsItsLinksButWasPassedBy_IsNeither) {
    list(region->points[5].children, 5, {6, 7, 8});
    region->points[6].next = 8;
    EXPECT_FALSE(shm::isLinkedToByPredecessor(*region, 7));
    EXPECT_FALSE(shm::isInSiblingList(*region, 7));
    region->points[5].children = 8;
    EXPECT_FALSE(shm::isLinkedToByPredecessor(*region, 6));
    EXPECT_FALSE(shm::isInSiblingList(*region, 6));
}

TEST_F(ReachabilityTest, PointBehindOneThatIsBeingInserted_IsListed) {
    list(region->root.devices, NO_POSITION, {0, 2});
    region->points[1].next = 2;
    region->points[1].prev = 0;
    region->points[0].next = 1; // the link back from 2 comes later
    EXPECT_FALSE(shm::isLinkedToByPredecessor(*region, 2));
    EXPECT_TRUE(shm::isInSiblingList(*region, 2));
}

TEST_F(ReachabilityTest, CircularLists_End) {
    list(region->root.devices, NO_POSITION, {0, 1});
    region->points[1].next = 0;
    region->points[2].prev = 1;
    EXPECT_FALSE(shm::isInSiblingList(*region, 2));
    region->values[3].next = 4;
    region->values[4].next = 3;
    EXPECT_FALSE(shm::isInValueChain(*region, 3, 5));
}

TEST_F(ReachabilityTest, Chain_HoldsItsSlotsOnly) {
    region->values[8].next = 8799;
    region->values[8799].next = 0;
    for (std::uint32_t const pos : {8U, 8799U, 0U}) {
        EXPECT_TRUE(shm::isInValueChain(*region, 8, pos)) << pos;
    }
    EXPECT_FALSE(shm::isInValueChain(*region, 8, 1));
    EXPECT_FALSE(shm::isInValueChain(*region, 8799, 8));
    EXPECT_FALSE(shm::isInValueChain(*region, 8800, 0));
    EXPECT_FALSE(shm::isInValueChain(*region, NO_POSITION, 0));
}

} // namespace
