// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/ValueKeys.h"

#include <gtest/gtest.h>

#include <set>

namespace qel::test {

TEST(ValueKeysTest, IsPointStateKey_HoldsForTenKeysOfAll) {
    std::set<int> const pointLevel{48, 51, 52, 53, 54, 55, 56, 57, 58, 59};
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(pointLevel.count(key) == 1, shm::isPointStateKey(static_cast<unsigned short>(key))) << key;
    }
}

TEST(ValueKeysTest, IsInThousandths_HoldsForElevenKeysOfAll) {
    std::set<int> const thousandths{32, 33, 34, 35, 36, 37, 38, 65529, 65530, 65531, 65532};
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(thousandths.count(key) == 1, shm::isInThousandths(static_cast<unsigned short>(key))) << key;
    }
}

} // namespace qel::test
