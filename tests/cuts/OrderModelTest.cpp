// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What is allowed and what is not, on stores that one can think through.

#include "tests/cuts/OrderModel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

namespace qel::test {

namespace {

using Bytes = std::vector<std::uint8_t>;
using States = std::set<Bytes>;

Store put(StoreKind kind, std::uint32_t offset, std::uint8_t before, std::uint8_t written) {
    Store store;
    store.kind = kind;
    store.width = 1;
    store.offset = offset;
    store.before = before;
    store.written = written;
    return store;
}
Store plain(std::uint32_t offset, std::uint8_t before, std::uint8_t written) {
    return put(StoreKind::Plain, offset, before, written);
}
Store release(std::uint32_t offset, std::uint8_t before, std::uint8_t written) {
    return put(StoreKind::Release, offset, before, written);
}

States statesOf(Stores const& stores, std::size_t bytes) {
    Bytes region(bytes);
    States states;
    EXPECT_TRUE(OrderModel(stores, OrderModel::Halves::Whole).forEachState(region.data(), nullptr, [&] {
        states.insert(region);
        return true;
    }));
    auto expected = Bytes(bytes);
    for (auto const& store : stores) {
        apply(store, expected.data());
    }
    EXPECT_EQ(expected, region);
    return states;
}

TEST(OrderModel, PlainStores_PassEachOther) {
    EXPECT_EQ((States{{0, 0}, {1, 0}, {0, 1}, {1, 1}}), statesOf({plain(0, 0, 1), plain(1, 0, 1)}, 2));
}

TEST(OrderModel, Release_ComesAfterAllBefore) {
    EXPECT_EQ((States{{0, 0}, {1, 0}, {1, 1}}), statesOf({plain(0, 0, 1), release(1, 0, 1)}, 2));
}

TEST(OrderModel, PlainStore_PassesTheReleaseBefore) {
    EXPECT_EQ((States{{0, 0}, {1, 0}, {0, 1}, {1, 1}}), statesOf({release(0, 0, 1), plain(1, 0, 1)}, 2));
}

TEST(OrderModel, Releases_KeepTheirOrder) {
    EXPECT_EQ((States{{0, 0}, {1, 0}, {1, 1}}), statesOf({release(0, 0, 1), release(1, 0, 1)}, 2));
}

TEST(OrderModel, Fence_LetsNothingPass) {
    EXPECT_EQ((States{{0, 0}, {1, 0}, {1, 1}}), statesOf({release(0, 0, 1), Store(), plain(1, 0, 1)}, 2));
    EXPECT_EQ((States{{0, 0}, {1, 0}, {1, 1}}), statesOf({plain(0, 0, 1), Store(), plain(1, 0, 1)}, 2));
}

TEST(OrderModel, OneLocation_KeepsItsOrder) {
    EXPECT_EQ((States{{0}, {1}, {2}}), statesOf({plain(0, 0, 1), plain(0, 1, 2)}, 1));
    // ... also past a release into another location, but not past one into the same.
    EXPECT_EQ((States{{0, 0}, {1, 0}, {2, 0}, {1, 1}, {2, 1}}),
              statesOf({plain(0, 0, 1), release(1, 0, 1), plain(0, 1, 2)}, 2));
    EXPECT_EQ((States{{0}, {1}, {2}}), statesOf({release(0, 0, 1), plain(0, 1, 2)}, 1));
}

TEST(OrderModel, PlainStore_PassesTwoReleases) {
    EXPECT_EQ((States{{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}}),
              statesOf({release(0, 0, 1), release(1, 0, 1), plain(2, 0, 1)}, 3));
}

TEST(OrderModel, StoreOfEightBytes_IsSeenInHalvesOnlyWhenSplit) {
    Store store;
    store.kind = StoreKind::Plain;
    store.width = 8;
    store.written = 0x0000000200000001;
    for (auto const halves : {OrderModel::Halves::Whole, OrderModel::Halves::Split}) {
        Bytes region(8);
        States states;
        OrderModel(Stores{store}, halves).forEachState(region.data(), nullptr, [&] {
            states.insert(region);
            return true;
        });
        EXPECT_EQ(halves == OrderModel::Halves::Whole ? 2U : 4U, states.size());
    }
}

TEST(OrderModel, Prefixes_AreInOrder) {
    Bytes region(2);
    States states;
    OrderModel(Stores{plain(0, 0, 1), release(1, 0, 1)}, OrderModel::Halves::Whole)
        .forEachPrefix(region.data(), nullptr, [&] {
            states.insert(region);
            return true;
        });
    EXPECT_EQ((States{{0, 0}, {1, 0}, {1, 1}}), states);
}

} // namespace

} // namespace qel::test
