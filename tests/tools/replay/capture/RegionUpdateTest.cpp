// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/RegionUpdate.h"

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace qel::tools {

namespace {

using shm::record::Region;

std::unique_ptr<Region> regionOf(inspect::Image const& image) {
    return std::make_unique<Region>(image.region());
}

/// Stores, and calls the observer after each single store.
template <typename Observer>
struct ObservedStores {
    Observer const& observer;

    void link(std::uint32_t& field, std::uint32_t pos) const {
        shm::storeLink(field, pos);
        observer(&field);
    }
    template <typename Field>
    void field(Field& field, Field const& value) const {
        shm::storeField(field, value);
        observer(&field);
    }
};

template <typename Observer>
RegionChange update(Region& live, Region const& wanted, Observer const& observer) {
    return RegionUpdate(live, wanted, ObservedStores<Observer>{observer}).run();
}

RegionChange update(Region& live, Region const& wanted) {
    return update(live, wanted, [](void const* /*field*/) {});
}

/// A link that the walk met twice: a cycle, or two lists that run into each other.
bool hasCuts(Region const& region) {
    return !inspect::PointTree(inspect::Image(&region, sizeof region)).skippedLinks().empty();
}

void expectSame(Region const& wanted, Region const& live) {
    test::expectSame(inspect::Image(&wanted, sizeof wanted), inspect::Image(&live, sizeof live));
}

/// Points in the root's lists and below each other, each with some of its own values; nothing twice.
std::unique_ptr<Region> randomForest(std::mt19937& random) {
    auto region = regionOf(inspect::Image());
    std::vector<std::uint32_t> slots{0, 1, 2, 3, 4, 5, 6, 7};
    std::shuffle(slots.begin(), slots.end(), random);
    slots.resize(2 + random() % 7);
    std::vector<std::uint32_t*> ends{&region->root.devices, &region->root.groups};
    for (auto const slot : slots) {
        auto& point = region->points[slot];
        point.pos = slot;
        point.guid = static_cast<std::int64_t>(random());
        auto const place = random() % ends.size();
        *ends[place] = slot;
        ends[place] = &point.next;
        ends.push_back(&point.children);
        // Of its own values only, in any order.
        std::vector<std::uint32_t> values{slot * 3, slot * 3 + 1, slot * 3 + 2};
        std::shuffle(values.begin(), values.end(), random);
        auto* end = &point.mvs;
        for (auto count = random() % 4; count > 0; --count) {
            *end = values[count - 1];
            end = &region->values[values[count - 1]].next;
        }
    }
    return region;
}

} // namespace

TEST(RegionUpdateTest, Result_EqualsTheWantedRegionByteForByte) {
    auto const images = test::randomImages(40, 31);
    auto live = regionOf(inspect::Image());
    for (auto const& image : images) {
        update(*live, image.region());
        expectSame(image.region(), *live);
    }
}

TEST(RegionUpdateTest, EqualRegions_NeedNoStore) {
    auto const image = test::randomImages(1, 32).front();
    auto const live = regionOf(image);
    std::size_t stores = 0;
    auto const change = update(*live, image.region(), [&](void const* /*field*/) { ++stores; });
    EXPECT_EQ(0U, stores);
    EXPECT_EQ(0U, change.values);
    EXPECT_FALSE(change.isStructureChanged);
}

TEST(RegionUpdateTest, Links_FormNoCycleAtAnyMoment) {
    auto random = test::randomNumbers(5);
    auto live = randomForest(random);
    std::size_t stores = 0;
    for (int round = 0; round < 60; ++round) {
        auto const wanted = randomForest(random);
        ASSERT_FALSE(hasCuts(*wanted));
        update(*live, *wanted, [&](void const* /*field*/) {
            ++stores;
            ASSERT_FALSE(hasCuts(*live)) << "round " << round;
        });
        expectSame(*wanted, *live);
    }
    EXPECT_GT(stores, 1000U);
}

TEST(RegionUpdateTest, Value_GetsItsNumberAfterTimeAndState) {
    auto live = regionOf(inspect::Image());
    auto const wanted = regionOf(inspect::Image());
    auto& value = live->values[3];
    wanted->values[3].value = 2.0;
    wanted->values[3].at = 7;
    wanted->values[3].state = eStatus_NoError;
    std::vector<void const*> order;
    auto const change = update(*live, *wanted, [&](void const* field) { order.push_back(field); });
    EXPECT_EQ((std::vector<void const*>{&value.at, &value.state, &value.value}), order);
    EXPECT_EQ(1U, change.values);
    EXPECT_FALSE(change.isStructureChanged);
}

TEST(RegionUpdateTest, Version_ComesLast) {
    auto live = regionOf(inspect::Image());
    auto const wanted = std::make_unique<Region>();
    std::memset(wanted.get(), 0, sizeof *wanted);
    wanted->root.version = shm::ACTIVE_VERSION;
    update(*live, *wanted, [&](void const* /*field*/) { ASSERT_EQ(0xFF, live->root.version); });
    expectSame(*wanted, *live);
}

TEST(RegionUpdateTest, Structure_IsLinksIdsKeysAndSlotNumbers) {
    // Field by field of one point, one value and the root.
    std::set<std::size_t> const structural{test::rawPoint(9) + test::field::pos,
                                           test::rawPoint(9) + test::field::next,
                                           test::rawPoint(9) + test::field::prev,
                                           test::rawPoint(9) + test::field::mvs,
                                           test::rawPoint(9) + test::field::children,
                                           test::rawPoint(9) + test::field::parent,
                                           test::rawPoint(9) + test::field::guid,
                                           test::rawValue(9) + test::field::valueNext,
                                           test::rawValue(9) + test::field::valueKey,
                                           test::field::devices,
                                           test::field::groups};
    std::set<std::size_t> const others{test::rawPoint(9) + test::field::pointAt,
                                       test::rawPoint(9) + test::field::pointState,
                                       test::rawPoint(9) + test::field::pointType,
                                       test::rawValue(9),
                                       test::rawValue(9) + test::field::valueAt,
                                       test::rawValue(9) + test::field::valueState,
                                       test::field::rootState,
                                       test::field::version};
    auto const changeAt = [](std::size_t offset) {
        auto const live = regionOf(inspect::Image());
        auto const wanted = regionOf(inspect::Image());
        reinterpret_cast<unsigned char*>(wanted.get())[offset] = 1;
        return update(*live, *wanted);
    };
    for (auto const offset : structural) {
        EXPECT_TRUE(changeAt(offset).isStructureChanged) << offset;
        EXPECT_EQ(0U, changeAt(offset).values) << offset;
    }
    for (auto const offset : others) {
        EXPECT_FALSE(changeAt(offset).isStructureChanged) << offset;
    }
    for (auto const offset : {std::size_t{0}, test::field::valueAt, test::field::valueState}) {
        EXPECT_EQ(1U, changeAt(test::rawValue(9) + offset).values) << offset;
    }
}

} // namespace qel::tools
