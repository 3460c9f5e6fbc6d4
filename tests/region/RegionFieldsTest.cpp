// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/RegionFields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

TEST(RegionFieldsTest, StoreField_WritesTheFieldAndNothingBesideIt) {
    shm::record::QelShmMVal sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    shm::storeField(sut.at, 0x1122334455667788ULL);
    shm::storeField(sut.key, 0x0102);
    shm::storeField(sut.state, eStatus_On);
    std::vector<std::uint8_t> bytes(sizeof sut);
    std::memcpy(bytes.data(), &sut, sizeof sut);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, // value
                                                0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11, // at
                                                0x11, 0x00, 0x00, 0x00,                         // state
                                                0xFF, 0xFF, 0xFF, 0xFF,                         // next
                                                0x02, 0x01,                                     // key
                                                0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));          // reserved
}

TEST(RegionFieldsTest, StoreLink_WritesTheLinkAndNothingBesideIt) {
    shm::record::QelShmMVal sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    shm::storeLink(sut.next, 0x01020304);
    std::vector<std::uint8_t> bytes(sizeof sut);
    std::memcpy(bytes.data(), &sut, sizeof sut);
    std::vector<std::uint8_t> expected(32, 0xFF);
    expected[20] = 4;
    expected[21] = 3;
    expected[22] = 2;
    expected[23] = 1;
    EXPECT_EQ(bytes, expected);
}

TEST(RegionFieldsTest, LoadLink_GivesTheLink) {
    shm::record::QelShmMVal sut{};
    sut.next = 0x01020304;
    EXPECT_EQ(shm::loadLink(sut.next), 0x01020304U);
}

TEST(RegionFieldsTest, WipeSlot_FillsTheSlotAndNothingBesideIt) {
    shm::record::QelShmMVal slots[3] = {};
    shm::wipeSlot(slots[1]);
    std::vector<std::uint8_t> bytes(sizeof slots);
    std::memcpy(bytes.data(), slots, sizeof slots);
    std::vector<std::uint8_t> expected(96, 0);
    std::fill(expected.begin() + 32, expected.begin() + 64, 0xFF);
    EXPECT_EQ(bytes, expected);
}

TEST(RegionFieldsTest, StoreVersion_WritesTheVersionAndNothingBesideIt) {
    shm::record::QelShmRoot sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    shm::storeVersion(sut, 32);
    std::vector<std::uint8_t> bytes(sizeof sut);
    std::memcpy(bytes.data(), &sut, sizeof sut);
    std::vector<std::uint8_t> expected(32, 0xFF);
    expected[28] = 32;
    EXPECT_EQ(bytes, expected);
}

TEST(RegionFieldsTest, LoadVersion_GivesTheVersion) {
    shm::record::QelShmRoot sut{};
    EXPECT_EQ(shm::loadVersion(sut), 0);
    sut.version = 0xFF;
    EXPECT_EQ(shm::loadVersion(sut), 0xFF);
}

} // namespace
