// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/SvidParts.h"

#include <gtest/gtest.h>

namespace qel::test {

TEST(SvidPartsTest, PointSvid_ClearsTheLow16Bits) {
    EXPECT_EQ(0x0100FFFFFFFF0000LL, shm::pointSvid(0x0100FFFFFFFF0000LL));
    EXPECT_EQ(0x0100FFFFFFFF0000LL, shm::pointSvid(0x0100FFFFFFFFFFFFLL));
    EXPECT_EQ(0x0100FFFFFFFF0000LL, shm::pointSvid(0x0100FFFFFFFF0001LL));
    EXPECT_EQ(-0x10000LL, shm::pointSvid(-1LL));
    EXPECT_EQ(0LL, shm::pointSvid(0xFFFFLL));
}

TEST(SvidPartsTest, ValueKey_IsTheLow16Bits) {
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(key, shm::valueKey(0x0100FFFFFFFF0000LL | key));
        ASSERT_EQ(key, shm::valueKey(-0x10000LL | key));
    }
}

} // namespace qel::test
