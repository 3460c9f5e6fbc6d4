// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/ValueKeys.h"

#include "tests/model/ReferenceSvid.h"

#include <gtest/gtest.h>

namespace qel::test {

TEST(ValueKeysTest, IsPointStateKey_IsThatOfTheReferenceForEveryKey) {
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(reference::isPointStateKey(key), shm::isPointStateKey(static_cast<unsigned short>(key)))
            << key;
    }
}

TEST(ValueKeysTest, IsInThousandths_IsThatOfTheReferenceForEveryKey) {
    for (int key = 0; key <= 0xFFFF; ++key) {
        ASSERT_EQ(reference::isInThousandths(key), shm::isInThousandths(static_cast<unsigned short>(key)))
            << key;
    }
}

} // namespace qel::test
