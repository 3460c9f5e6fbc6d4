// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The benchmarks' straightforward way does what it is measured for.

#include "bench/literal/States.h"

#include "tests/model/ReferenceStates.h"

#include <gtest/gtest.h>

#include <list>

namespace qel::test {

namespace {

// All states, and numbers beside them that are none.
constexpr int first = -4;
constexpr int last = 45;

std::list<eStatus_Bits> listOf(reference::States const& numbers) {
    std::list<eStatus_Bits> states;
    for (auto const number : numbers) {
        states.push_back(static_cast<eStatus_Bits>(number));
    }
    return states;
}

} // namespace

TEST(LiteralStatesTest, Lists_AreFoldedAsByTheReference) {
    for (int a = first; a <= last; ++a) {
        for (int b = first; b <= last; ++b) {
            for (auto const& states : {reference::States{}, {a}, {a, b}, {0, a, b}, {a, b, 3}, {a, b, 13}}) {
                ASSERT_EQ(reference::foldValues(states), bench::literal::mvState(listOf(states)))
                    << a << ' ' << b;
                ASSERT_EQ(reference::foldChildren(states), bench::literal::mpState(listOf(states)))
                    << a << ' ' << b;
            }
        }
    }
}

TEST(LiteralStatesTest, EveryOwnStateValueAndChild_AreCombinedAsByTheReference) {
    for (int own = first; own <= last; ++own) {
        auto const stored = static_cast<eStatus_Bits>(own);
        ASSERT_EQ(reference::ownState(own), bench::literal::mpInitial(stored)) << own;
        for (int value = first; value <= last; ++value) {
            for (int child = first; child <= last; ++child) {
                ASSERT_EQ(reference::pointState(own, {value}, {child}),
                          bench::literal::mpState(stored, listOf({value}), listOf({child})))
                    << own << ' ' << value << ' ' << child;
            }
        }
    }
}

} // namespace qel::test
