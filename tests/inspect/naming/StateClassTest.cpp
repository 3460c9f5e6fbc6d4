// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateClass.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <optional>
#include <set>

namespace qel::inspect {

TEST(StateClassTest, ClassOf_EveryState) {
    std::map<StateClass, std::set<int>> const expected{
        {StateClass::NoValue, {-2, -1}},
        {StateClass::Plain, {0, 37, 38}},
        {StateClass::Alarm, {1, 2, 5, 7, 8, 9, 10, 19, 20, 23, 25, 26, 29, 30, 31, 32, 35, 39}},
        {StateClass::Warning, {3, 4, 11, 12, 13, 14, 21, 22, 24, 27, 28, 33, 40, 43}},
        {StateClass::Out, {6, 16, 18, 42}},
        {StateClass::Identify, {15}},
        {StateClass::Good, {17, 41}},
        {StateClass::Busy, {34, 36}},
    };
    int states = 0;
    for (auto const& [kind, numbers] : expected) {
        for (auto const number : numbers) {
            EXPECT_EQ(kind, classOf(static_cast<eStatus_Bits>(number))) << number;
            ++states;
        }
    }
    EXPECT_EQ(46, states);
}

TEST(StateClassTest, ClassOf_NumberThatIsNoState) {
    for (int const number : {-3, 44, 1000, -1000}) {
        EXPECT_EQ(StateClass::NoState, classOf(static_cast<eStatus_Bits>(number))) << number;
    }
}

TEST(StateClassTest, NumberIsThere_FromTheFirstDeliveryOn_InEveryState) {
    constexpr int least = -100;
    constexpr int most = 200;
    for (int number = least; number <= most; ++number) {
        auto const state = static_cast<eStatus_Bits>(number);
        bool const isNone = number < 0 || number > eStatus_SlaveVersionTooNew;
        EXPECT_EQ(!isNone, hasNumber(state)) << number;
    }
}

TEST(StateClassTest, NumberIn_IsNoneWithoutAStateForItAndIfItIsNotFinite) {
    EXPECT_EQ(1.5, numberIn(eStatus_Lost, 1.5));
    EXPECT_EQ(std::nullopt, numberIn(eStatus_ExpectedValue, 1.5));
    EXPECT_EQ(std::nullopt, numberIn(static_cast<eStatus_Bits>(99), 1.5));
    EXPECT_EQ(std::nullopt, numberIn(eStatus_NoError, std::numeric_limits<double>::infinity()));
    EXPECT_EQ(std::nullopt, numberIn(eStatus_NoError, std::numeric_limits<double>::quiet_NaN()));
}

} // namespace qel::inspect
