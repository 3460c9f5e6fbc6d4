// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/KeySets.h"

#include "format/KeyTable.h"

#include <gtest/gtest.h>

#include <set>

namespace qel::test {

TEST(KeySetsTest, IsPointStateKey_HoldsForTenKeysOfAll) {
    std::set<int> const pointLevel{48, 51, 52, 53, 54, 55, 56, 57, 58, 59};
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(pointLevel.count(key) == 1, shm::isPointStateKey(static_cast<unsigned short>(key))) << key;
    }
}

TEST(KeySetsTest, IsEnergyKey_HoldsForElevenKeysOfAll) {
    std::set<int> const energies{32, 33, 34, 35, 36, 37, 38, 65529, 65530, 65531, 65532};
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(energies.count(key) == 1, shm::isEnergyKey(static_cast<unsigned short>(key))) << key;
    }
}

TEST(KeySetsTest, BothSets_AreThoseOfTheKeyTable) {
    for (int number = 0; number <= 0xFFFF; ++number) {
        auto const key = static_cast<unsigned short>(number);
        auto const kind = shm::keyRow(key).kind;
        ASSERT_EQ(kind == shm::KeyKind::PointState, shm::isPointStateKey(key)) << key;
        ASSERT_EQ(kind == shm::KeyKind::Energy, shm::isEnergyKey(key)) << key;
    }
}

} // namespace qel::test
