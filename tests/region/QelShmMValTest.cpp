// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmMVal.h"

#include "format/ValueKeys.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using shm::QelShmMVal;

TEST(QelShmMValTest, IsOnePointerThatCopiesFreely) {
    static_assert(sizeof(QelShmMVal) == sizeof(void*));
    static_assert(std::is_trivially_copyable_v<QelShmMVal>);
    static_assert(!std::is_convertible_v<QelShmMVal, bool>);
    static_assert(std::is_same_v<decltype(*QelShmMVal()), shm::record::QelShmMVal const&>);
}

TEST(QelShmMValTest, DefaultConstructed_RefersToNothing) {
    EXPECT_FALSE(QelShmMVal());
    EXPECT_FALSE(QelShmMVal(nullptr));
}

TEST(QelShmMValTest, ShowsWhatTheSlotHoldsNow) {
    shm::record::QelShmMVal slot{};
    QelShmMVal const sut(&slot);
    auto const copy = sut;
    slot.key = shm::key::differentialCurrentAc;
    slot.value = 1.5;
    EXPECT_TRUE(sut);
    EXPECT_EQ(sut->key, shm::key::differentialCurrentAc);
    EXPECT_EQ((*copy).value, 1.5);
    EXPECT_EQ(&*sut, &slot);
}

} // namespace
