// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Known answers, worked out by hand.

#include "tests/model/ReferenceStates.h"

#include "tests/model/ReferenceSvid.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace qel::test::reference {

TEST(ReferenceStatesTest, OwnState_KeepsOnOffAndIdentify_AndDropsAlarmsAndWarnings) {
    std::vector<std::pair<State, State>> const expected{
        {17, 17}, {9, 17},  {13, 17}, {19, 17}, {21, 17}, {18, 18}, {10, 18}, {14, 18}, {20, 18},
        {22, 18}, {15, 15}, {7, 15},  {11, 15}, {16, 16}, {8, 16},  {12, 16}, {-2, -2}, {5, 5},
        {6, 6},   {34, 34}, {35, 35}, {36, 36}, {43, 43}, {23, 17}, {24, 17}, {25, 17}, {-1, 17},
        {0, 17},  {1, 17},  {39, 17}, {40, 17}, {41, 17}, {44, 17}, {-3, 17}};
    for (auto const& [stored, own] : expected) {
        EXPECT_EQ(own, ownState(stored)) << stored;
    }
}

TEST(ReferenceStatesTest, FoldValues_TellsTheFirstAlarmElseTheLastWarningElseTheLastOther) {
    std::vector<std::pair<States, State>> const expected{
        {{}, -1},       {{-2, -1}, -1}, {{0, 41}, 41},     {{41, -2}, 41}, {{3, 0}, 3},   {{0, 3, 4}, 4},
        {{40, 14}, 14}, {{3, 1, 2}, 1}, {{13, 39, 9}, 39}, {{10}, 10},     {{5, 17}, 17}, {{23, 24}, 24}};
    for (auto const& [values, folded] : expected) {
        EXPECT_EQ(folded, foldValues(values)) << testing::PrintToString(values);
    }
}

TEST(ReferenceStatesTest, FoldChildren_TellsTheFirstUpdateElseTheLastAlarmElseTheLastWarning) {
    std::vector<std::pair<States, State>> const expected{
        {{}, -1},       {{-2, -1}, -1},      {{0, 17, 41}, -1},  {{1, 2, 3, 4}, -1},
        {{13, 9}, 9},   {{9, 13}, 9},        {{9, 23}, 23},      {{25, 13}, 25},
        {{22, 13}, 22}, {{21, 13}, 13},      {{24, 40}, 40},     {{9, 35, 34}, 35},
        {{34, 35}, 34}, {{5, 7, 8, 39}, 39}, {{19, 20, 22}, 22}, {{11, 12}, 12}};
    for (auto const& [children, folded] : expected) {
        EXPECT_EQ(folded, foldChildren(children)) << testing::PrintToString(children);
    }
}

TEST(ReferenceStatesTest, PointState_OfEachClassOfValuesAndChildren) {
    struct Row {
        State own;
        State child;    // -1: no children
        State quiet;    // without values that alarm or warn
        State warning;  // with one that warns
        State alarming; // with one that alarms
    };
    std::vector<Row> const rows{
        {17, -1, 17, 13, 9},  {17, 13, 24, 13, 9},  {17, 9, 23, 23, 9},   {17, 34, 34, 34, 34},
        {17, 35, 35, 35, 35}, {18, -1, 18, 14, 10}, {18, 13, 22, 14, 10}, {18, 9, 20, 23, 10},
        {18, 34, 34, 34, 34}, {15, -1, 15, 11, 7},  {15, 13, 24, 11, 7},  {15, 9, 23, 23, 7},
        {15, 35, 35, 35, 35}, {16, -1, 16, 12, 8},  {16, 13, 24, 12, 8},  {16, 9, 23, 23, 8},
        {16, 34, 34, 34, 34}, {35, -1, 35, 35, 35}, {35, 9, 35, 35, 35},  {35, 34, 34, 34, 34},
        {6, 9, 6, 6, 6},      {5, 34, 5, 5, 5},     {-2, 35, -2, -2, -2}, {34, 35, 34, 34, 34},
        {36, 9, 36, 36, 36},  {43, 34, 43, 43, 43}};
    for (auto const& row : rows) {
        auto const children = row.child == -1 ? States{} : States{row.child};
        EXPECT_EQ(row.quiet, pointState(row.own, {0}, children)) << row.own << ' ' << row.child;
        EXPECT_EQ(row.warning, pointState(row.own, {3}, children)) << row.own << ' ' << row.child;
        EXPECT_EQ(row.alarming, pointState(row.own, {1}, children)) << row.own << ' ' << row.child;
    }
}

TEST(ReferenceStatesTest, ReportedState_OfASwitchedOffCircuitIsAnAlarm) {
    auto const circuit = svidOf({1, 0, 1, 1, 3});
    EXPECT_EQ(39, reportedState(circuit, 18));
    EXPECT_EQ(17, reportedState(circuit, 17));
    EXPECT_EQ(10, reportedState(circuit, 10));
    EXPECT_EQ(18, reportedState(svidOf({1, 0, 1, 1, 3, 1}), 18)); // a socket
    EXPECT_EQ(18, reportedState(svidOf({1, 0, 1, 1}), 18));       // a phase
    EXPECT_EQ(18, reportedState(svidOf({1, 4, 1, 1, 3}), 18));    // a residual-current monitor
}

} // namespace qel::test::reference
