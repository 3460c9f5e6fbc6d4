// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/QelSharedMemoryStates.h"

#include "tests/model/ReferenceStates.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <list>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace reference = qel::test::reference;

using States = std::list<eStatus_Bits>;

eStatus_Bits state(std::int32_t number) {
    return static_cast<eStatus_Bits>(number);
}

States list(std::initializer_list<std::int32_t> numbers) {
    States result;
    for (auto const number : numbers) {
        result.push_back(state(number));
    }
    return result;
}

std::string text(States const& states) {
    std::ostringstream out;
    out << '[';
    for (auto const entry : states) {
        out << ' ' << static_cast<std::int32_t>(entry);
    }
    out << " ]";
    return out.str();
}

reference::States numbersOf(States const& states) {
    return {states.begin(), states.end()};
}

/// All states, and numbers that are none.
std::vector<eStatus_Bits> everyState() {
    std::vector<eStatus_Bits> result;
    for (int number = -2; number <= 43; ++number) {
        result.push_back(state(number));
    }
    for (int const number : {-3, -64, 44, 63, 64, 65, 73, 128 + 9, 1000, std::numeric_limits<int>::min(),
                             std::numeric_limits<int>::max()}) {
        result.push_back(state(number));
    }
    return result;
}

template <typename Check>
void forEveryListUpTo(std::size_t length, Check const& check) {
    static auto const states = everyState();
    States current;
    auto const extend = [&](auto const& self) -> void {
        check(current);
        if (current.size() == length || ::testing::Test::HasFatalFailure()) {
            return;
        }
        for (auto const next : states) {
            current.push_back(next);
            self(self);
            current.pop_back();
        }
    };
    extend(extend);
}

class QelSharedMemoryStatesTest : public ::testing::Test {
protected:
    shm::QelSharedMemoryStates sut;
};

TEST_F(QelSharedMemoryStatesTest, MpInitial_KeepsOnOffAndIdentifyOfEveryState) {
    for (int number = -300; number <= 300; ++number) {
        ASSERT_EQ(sut.mpInitial(state(number)), reference::ownState(number)) << number;
    }
    EXPECT_EQ(sut.mpInitial(state(std::numeric_limits<int>::min())), 17);
    EXPECT_EQ(sut.mpInitial(state(std::numeric_limits<int>::max())), 17);
}

TEST_F(QelSharedMemoryStatesTest, MpInitial_UndefinedAndUnknownStatesCountAsOn) {
    EXPECT_EQ(sut.mpInitial(state(-1)), 17);
    EXPECT_EQ(sut.mpInitial(state(100)), 17);
    EXPECT_EQ(sut.mpInitial(state(-3)), 17);
}

TEST_F(QelSharedMemoryStatesTest, MpInitial_ChildStatesWithoutOnOrOffCountAsOn) {
    EXPECT_EQ(sut.mpInitial(state(23)), 17);
    EXPECT_EQ(sut.mpInitial(state(24)), 17);
    EXPECT_EQ(sut.mpInitial(state(25)), 17);
}

TEST_F(QelSharedMemoryStatesTest, MvState_TellsTheFirstAlarmElseTheLastWarningElseTheLastOther) {
    EXPECT_EQ(sut.mvState(list({3, 0})), 3);
    EXPECT_EQ(sut.mvState(list({0, 3, 4})), 4);
    EXPECT_EQ(sut.mvState(list({3, 1, 2})), 1);
    EXPECT_EQ(sut.mvState(list({0, 41})), 41);
}

TEST_F(QelSharedMemoryStatesTest, MvState_NothingToFoldGivesUndefined) {
    EXPECT_EQ(sut.mvState(list({})), -1);
    EXPECT_EQ(sut.mvState(list({-2, -1})), -1);
}

TEST_F(QelSharedMemoryStatesTest, MvState_FollowsTheRulesForEveryListOfUpToThree) {
    forEveryListUpTo(3, [&](States const& values) {
        ASSERT_EQ(sut.mvState(values), reference::foldValues(numbersOf(values))) << text(values);
    });
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_AlarmOutranksWarningAndTheLastAlarmWins) {
    EXPECT_EQ(sut.mpState(list({9, 13})), 9);
    EXPECT_EQ(sut.mpState(list({13, 9})), 9);
    EXPECT_EQ(sut.mpState(list({9, 23})), 23);
    EXPECT_EQ(sut.mpState(list({25, 13})), 25);
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_TheFirstDeviceUpdateOutranksEverything) {
    EXPECT_EQ(sut.mpState(list({9, 35, 34})), 35);
    EXPECT_EQ(sut.mpState(list({34, 9, 35})), 34);
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_OtherStatesAreSkipped) {
    EXPECT_EQ(sut.mpState(list({0, 17, 41})), -1);
    EXPECT_EQ(sut.mpState(list({})), -1);
    EXPECT_EQ(sut.mpState(list({-2, -1})), -1);
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_OffChildWarningIsAnAlarmAndOnChildWarningIsNot) {
    EXPECT_EQ(sut.mpState(list({22, 13})), 22);
    EXPECT_EQ(sut.mpState(list({21, 13})), 13);
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_FollowsTheRulesForEveryListOfUpToThree) {
    forEveryListUpTo(3, [&](States const& children) {
        ASSERT_EQ(sut.mpState(children), reference::foldChildren(numbersOf(children))) << text(children);
    });
}

TEST_F(QelSharedMemoryStatesTest, MpState_SomeOwnStatesIgnoreValuesAndChildren) {
    EXPECT_EQ(sut.mpState(state(6), list({1}), list({9})), 6);
    for (int const own : {-2, 5, 6, 34, 36, 43}) {
        EXPECT_EQ(sut.mpState(state(own), list({1}), list({35})), own);
    }
}

TEST_F(QelSharedMemoryStatesTest, MpState_FailedUpdateStaysUntilAChildUpdates) {
    EXPECT_EQ(sut.mpState(state(35), list({}), list({})), 35);
    EXPECT_EQ(sut.mpState(state(35), list({1}), list({9})), 35);
    EXPECT_EQ(sut.mpState(state(35), list({}), list({34})), 34);
}

TEST_F(QelSharedMemoryStatesTest, MpState_UpdateOfAChildOutranksOwnAlarm) {
    EXPECT_EQ(sut.mpState(state(17), list({}), list({35})), 35);
    EXPECT_EQ(sut.mpState(state(17), list({1}), list({34})), 34);
}

TEST_F(QelSharedMemoryStatesTest, MpState_StoredAlarmFallsBackOnceTheValuesAreFine) {
    EXPECT_EQ(sut.mpState(state(9), list({}), list({})), 17);
}

TEST_F(QelSharedMemoryStatesTest, MpState_OwnWarningMakesTheOffPointLoseItsOffBesideAnAlarmingChild) {
    EXPECT_EQ(sut.mpState(state(18), list({3}), list({9})), 23);
}

TEST_F(QelSharedMemoryStatesTest, MpState_WarningsOfChildrenCountByTheirOnAndOff) {
    EXPECT_EQ(sut.mpState(state(18), list({}), list({22})), 20);
    EXPECT_EQ(sut.mpState(state(17), list({}), list({21})), 24);
}

TEST_F(QelSharedMemoryStatesTest, MpState_OwnWarningOutranksAWarningChild) {
    EXPECT_EQ(sut.mpState(state(17), list({3}), list({13})), 13);
    EXPECT_EQ(sut.mpState(state(15), list({4}), list({24})), 11);
}

TEST_F(QelSharedMemoryStatesTest, MpState_GivesTheStateOfEachClassOfValuesAndChildren) {
    struct Row {
        std::int32_t child; // -1: no children
        std::int32_t results[3];
    };
    struct Table {
        std::int32_t own;
        std::vector<Row> rows;
    };
    // Values none, warning, alarm across.
    std::vector<Table> const tables{
        {17,
         {{-1, {17, 13, 9}}, {13, {24, 13, 9}}, {9, {23, 23, 9}}, {34, {34, 34, 34}}, {35, {35, 35, 35}}}},
        {18,
         {{-1, {18, 14, 10}}, {13, {22, 14, 10}}, {9, {20, 23, 10}}, {34, {34, 34, 34}}, {35, {35, 35, 35}}}},
        {15,
         {{-1, {15, 11, 7}}, {13, {24, 11, 7}}, {9, {23, 23, 7}}, {34, {34, 34, 34}}, {35, {35, 35, 35}}}},
        {16,
         {{-1, {16, 12, 8}}, {13, {24, 12, 8}}, {9, {23, 23, 8}}, {34, {34, 34, 34}}, {35, {35, 35, 35}}}}};
    for (auto const& table : tables) {
        for (auto const& row : table.rows) {
            auto const children = row.child == -1 ? list({}) : list({row.child});
            EXPECT_EQ(sut.mpState(state(table.own), list({}), children), row.results[0])
                << table.own << ' ' << row.child;
            for (auto const warning : {3, 4, 13, 14, 40}) {
                EXPECT_EQ(sut.mpState(state(table.own), list({warning}), children), row.results[1])
                    << table.own << ' ' << row.child << ' ' << warning;
            }
            for (auto const alarm : {1, 2, 9, 10, 39}) {
                EXPECT_EQ(sut.mpState(state(table.own), list({alarm}), children), row.results[2])
                    << table.own << ' ' << row.child << ' ' << alarm;
            }
        }
    }
}

TEST_F(QelSharedMemoryStatesTest, MpState_FollowsTheRulesForEveryOwnStateValueAndChild) {
    std::vector<States> lists{{}};
    for (auto const single : everyState()) {
        lists.push_back({single});
    }
    // One list per outcome of the folding, with the deciding entry behind and before others.
    std::vector<States> const mixed{list({0, 3, 1}), list({3, 0}),  list({13, 22}), list({22, 13}),
                                    list({21, 0}),   list({9, 35}), list({34, 25}), list({-1, -2}),
                                    list({40, 39}),  list({24, 5})};
    lists.insert(lists.end(), mixed.begin(), mixed.end());
    std::set<int> results;
    for (auto const own : everyState()) {
        for (auto const& values : lists) {
            for (auto const& children : lists) {
                auto const result = sut.mpState(own, values, children);
                ASSERT_EQ(result, reference::pointState(own, numbersOf(values), numbersOf(children)))
                    << own << ' ' << text(values) << ' ' << text(children);
                results.insert(result);
            }
        }
    }
    EXPECT_EQ(results.count(19), 0U) << "On, Child Alarm";
    EXPECT_EQ(results.count(21), 0U) << "On, Child Warning";
}

// What propagateStates() relies on when it skips a propagation without changes, and when it combines each top-level
// point once. Values and children count by what they are folded into, which is -1 or one of them: so lists of none and
// of one are all there is.
TEST_F(QelSharedMemoryStatesTest, MpState_CombinedAgainWithTheSame_StaysForEveryOwnStateValueAndChild) {
    std::vector<States> lists{{}};
    for (auto const single : everyState()) {
        lists.push_back({single});
    }
    for (auto const own : everyState()) {
        for (auto const& values : lists) {
            for (auto const& children : lists) {
                auto const once = sut.mpState(own, values, children);
                ASSERT_EQ(once, sut.mpState(once, values, children))
                    << own << ' ' << text(values) << ' ' << text(children);
            }
        }
    }
}

TEST_F(QelSharedMemoryStatesTest, Lists_AreFoldedIntoNothingOrOneOfThem) {
    forEveryListUpTo(3, [&](States states) {
        auto const ofValues = sut.mvState(states);
        auto const ofChildren = sut.mpState(states);
        states.push_back(state(-1));
        ASSERT_NE(std::find(states.begin(), states.end(), ofValues), states.end()) << text(states);
        ASSERT_NE(std::find(states.begin(), states.end(), ofChildren), states.end()) << text(states);
        ASSERT_EQ(ofValues, sut.mvState({ofValues})) << text(states);
        ASSERT_EQ(ofChildren, sut.mpState({ofChildren})) << text(states);
    });
}

TEST_F(QelSharedMemoryStatesTest, MpStateOfChildren_ListWithItsEndsBehindIt_CountsOnce) {
    forEveryListUpTo(3, [&](States const& states) {
        auto repeated = states;
        for (auto end = states.begin(); end != states.end();) {
            repeated.insert(repeated.end(), ++end, states.end());
        }
        ASSERT_EQ(sut.mpState(states), sut.mpState(repeated)) << text(repeated);
    });
}

TEST_F(QelSharedMemoryStatesTest, MpState_GlobalStateIsOneOfFive) {
    std::set<int> results;
    forEveryListUpTo(2,
                     [&](States const& reported) { results.insert(sut.mpState(state(17), {}, reported)); });
    EXPECT_EQ(results, (std::set<int>{17, 23, 24, 34, 35}));
}

} // namespace
