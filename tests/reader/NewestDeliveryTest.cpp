// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/newestDelivery.h"

#include "tests/support/RandomNumbers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

using shm::newestDelivery;
using shm::record::Region;

std::unique_ptr<Region> wiped() {
    auto region = std::make_unique<Region>();
    std::memset(static_cast<void*>(region.get()), 0xFF, sizeof *region);
    return region;
}

/// A point, after it a value, without links.
void lay(Region& region, std::uint32_t point, std::uint64_t pointAt, std::uint32_t value,
         std::uint64_t valueAt) {
    region.points[point].at = pointAt;
    region.points[point].mvs = value;
    region.values[value].at = valueAt;
}

TEST(NewestDeliveryTest, NothingReached_IsNever) {
    auto const region = wiped();
    EXPECT_EQ(newestDelivery(*region), 0U);
    region->points[3].at = 77; // linked nowhere
    EXPECT_EQ(newestDelivery(*region), 0U);
}

TEST(NewestDeliveryTest, OfPointsAndValues_IsTheNewest) {
    auto const region = wiped();
    lay(*region, 0, 10, 0, 20);
    lay(*region, 799, 30, 8799, 15);
    lay(*region, 5, 5, 6, 6);
    region->root.devices = 0;
    region->root.groups = 799;
    region->points[0].children = 5;
    EXPECT_EQ(newestDelivery(*region), 30U);
    region->values[6].at = 31; // of a child
    EXPECT_EQ(newestDelivery(*region), 31U);
    region->values[6].next = 7;
    region->values[7].at = 32; // next in the chain
    EXPECT_EQ(newestDelivery(*region), 32U);
    region->points[5].next = 9;
    region->points[9].at = 33; // next sibling
    EXPECT_EQ(newestDelivery(*region), 33U);
}

TEST(NewestDeliveryTest, WipedSlot_DoesNotCount) {
    auto const region = wiped();
    region->root.devices = 1;
    region->points[1].mvs = 2;
    EXPECT_EQ(newestDelivery(*region), 0U);
    region->values[2].at = 4;
    EXPECT_EQ(newestDelivery(*region), 4U);
}

TEST(NewestDeliveryTest, CircularAndCrossingLists_End) {
    auto const region = std::make_unique<Region>();
    std::memset(static_cast<void*>(region.get()), 0, sizeof *region); // slot 0 leads to itself everywhere
    region->values[0].at = 3;
    EXPECT_EQ(newestDelivery(*region), 3U);
    for (std::uint32_t pos = 0; pos < 30; ++pos) { // each is next and child of the one before it
        region->points[pos].next = pos + 1;
        region->points[pos].children = pos + 1;
    }
    region->points[30].at = 9;
    EXPECT_EQ(newestDelivery(*region), 9U);
}

TEST(NewestDeliveryTest, RandomBytes_EndWithinTheTables) {
    auto random = qel::test::randomNumbers(20261122);
    auto const below = [&random](unsigned int end) {
        return static_cast<std::uint32_t>(random() % end);
    };
    auto const region = std::make_unique<Region>();
    auto* const bytes = reinterpret_cast<unsigned char*>(region.get());
    for (int round = 0; round < 50; ++round) {
        for (std::size_t i = 0; i < sizeof *region; ++i) {
            bytes[i] = static_cast<unsigned char>(random());
        }
        for (auto& point : region->points) { // in range, so that many are followed
            point.next = below(900);
            point.children = below(900);
            point.mvs = below(9000);
        }
        for (auto& value : region->values) {
            value.next = below(9000);
        }
        region->root.devices = below(800);
        EXPECT_NE(newestDelivery(*region), 0U);
    }
}

TEST(NewestDeliveryTest, FullTables_AreReachedWhole) {
    auto const region = wiped();
    region->root.devices = 0;
    for (std::uint32_t pos = 0; pos < shm::MP_COUNT; ++pos) {
        auto& point = region->points[pos];
        point.at = 1;
        point.children = pos + 1 < shm::MP_COUNT ? pos + 1 : shm::NO_POSITION;
        point.mvs = pos * 11;
        for (std::uint32_t value = 0; value < 11; ++value) {
            region->values[pos * 11 + value].at = 1;
            region->values[pos * 11 + value].next = value < 10 ? pos * 11 + value + 1 : shm::NO_POSITION;
        }
    }
    for (std::uint32_t pos : {0U, 4321U, 8799U}) {
        region->values[pos].at = 1000 + pos;
        EXPECT_EQ(newestDelivery(*region), 1000U + pos);
    }
}

} // namespace
