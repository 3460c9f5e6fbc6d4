// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The stores are recorded, all of them.

#include "tests/cuts/StoreLog.h"
#include "tests/cuts/CutBench.h"
#include "tests/cuts/Operations.h"
#include "tests/cuts/Recording.h"
#include "tests/cuts/TreeShapes.h"
#include "tests/cuts/recording/region/RegionFields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace qel::test {

namespace {

class StoreLogTest : public testing::Test {
protected:
    std::unique_ptr<shm::record::Region> region = std::make_unique<shm::record::Region>();
    StoreLog sut{region.get()};
};

TEST_F(StoreLogTest, Field_IsNotedAsPlainStore) {
    region->values[1].key = 5;
    shm::storeField(region->values[1].key, 7);
    ASSERT_EQ(1U, sut.stores().size());
    auto const& store = sut.stores()[0];
    EXPECT_EQ(StoreKind::Plain, store.kind);
    EXPECT_EQ(38400U + 32U + 24U, store.offset);
    EXPECT_EQ(2U, store.width);
    EXPECT_EQ(5U, store.before);
    EXPECT_EQ(7U, store.written);
    EXPECT_EQ(7U, region->values[1].key);
}

TEST_F(StoreLogTest, LinkAndVersion_AreNotedAsReleases) {
    shm::storeLink(region->points[1].next, 9);
    shm::storeVersion(region->root, 32);
    ASSERT_EQ(2U, sut.stores().size());
    EXPECT_EQ(StoreKind::Release, sut.stores()[0].kind);
    EXPECT_EQ(48U + 4U, sut.stores()[0].offset);
    EXPECT_EQ(StoreKind::Release, sut.stores()[1].kind);
    EXPECT_EQ(320028U, sut.stores()[1].offset);
    EXPECT_EQ(9U, shm::loadLink(region->points[1].next));
    EXPECT_EQ(32U, shm::loadVersion(region->root));
}

TEST_F(StoreLogTest, WipedSlot_IsAFenceAndThenEveryByteOnce) {
    shm::wipeSlot(region->points[2]);
    shm::wipeSlot(region->values[3]);
    auto const& stores = sut.stores();
    std::vector<int> stored(rawRegionSize);
    std::size_t fences = 0;
    for (auto const& store : stores) {
        fences += store.kind == StoreKind::Fence ? 1 : 0;
        for (std::size_t byte = 0; byte < store.width; ++byte) {
            ++stored[store.offset + byte];
        }
    }
    EXPECT_EQ(2U, fences);
    EXPECT_EQ(StoreKind::Fence, stores.front().kind);
    auto const areStored = [&](std::size_t from, std::size_t to) {
        return std::all_of(stored.begin() + static_cast<std::ptrdiff_t>(from),
                           stored.begin() + static_cast<std::ptrdiff_t>(to),
                           [](int times) { return times == 1; });
    };
    EXPECT_TRUE(areStored(rawPoint(2), rawPoint(3)));
    EXPECT_TRUE(areStored(rawValue(3), rawValue(4)));
    EXPECT_EQ(48 + 32, std::count(stored.begin(), stored.end(), 1));
}

class RecordingTest : public CutBench {};

TEST_F(RecordingTest, EveryOperation_IsExplainedByItsStores) {
    for (auto const& shape : treesOf(3)) {
        auto const tree = withValues(shape, 4);
        for (auto const& operation : operationsOn(tree)) {
            auto const recording = sut.record(tree, operation);
            EXPECT_TRUE(recording.isComplete()) << tree.name << ", " << operation.name;
        }
    }
}

TEST_F(RecordingTest, EveryKindOfOperation_Stores) {
    auto const tree = withValues(treesOf(2).front(), 2);
    for (auto const& operation : operationsOn(tree)) {
        EXPECT_FALSE(sut.record(tree, operation).stores().empty()) << operation.name;
    }
}

TEST_F(RecordingTest, StoreThatBypassesTheRecordedFunctions_IsNoticed) {
    auto const tree = withValues(treesOf(2).front(), 2);
    auto const honest = operationsOn(tree).front();
    ASSERT_TRUE(sut.record(tree, honest).isComplete());
    auto dishonest = honest;
    dishonest.calls.emplace_back([](WriterBench& writer) { ++writer.bytes()[rawRootOffset + 31]; });
    EXPECT_FALSE(sut.record(tree, dishonest).isComplete());
}

} // namespace

} // namespace qel::test
