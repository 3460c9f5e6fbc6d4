// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionField.h"

#include <gtest/gtest.h>

namespace qel::inspect {

TEST(RegionField, Offset_IsThatOfTheLayout) {
    EXPECT_EQ(0U, regionOffset(field::size, 0));
    EXPECT_EQ(320000U, regionOffset(field::rootGuid, 0));
    EXPECT_EQ(320020U, regionOffset(field::groups, 7)); // the root has one slot
    EXPECT_EQ(799U * 48 + 20, regionOffset(field::parent, 799));
    EXPECT_EQ(38400U + 8799 * 32 + 26, regionOffset(field::valueReserved, 8799));
}

TEST(RegionField, FieldsOfDifferentRecordsDiffer) {
    EXPECT_TRUE(field::next == field::next);
    EXPECT_FALSE(field::next == field::prev);
    EXPECT_FALSE(field::rootGuid == field::pos); // both at 0
}

} // namespace qel::inspect
