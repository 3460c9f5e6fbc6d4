// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/RowList.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

#include <string>

namespace qel::watch {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RowListTest : public testing::Test {
protected:
    /// Each row as text: fold mark or blank, depth, name.
    std::vector<std::string> rows(SortOrder order = SortOrder::Tree,
                                  WatchedNames const& names = WatchedNames({})) {
        auto const image = unit.image();
        UnitStructure structure(names);
        structure.update(image);
        tracker.update(structure, image, ticks);
        std::vector<std::string> texts;
        for (auto const& row : rowsOf({structure, image, tracker, folds, filter, order, ticks})) {
            auto const& name =
                row.isPoint ? structure.points()[row.index].name : structure.values()[row.index].name;
            char const* const open = row.isFoldable ? "-" : " ";
            std::string text = row.isFolded ? "+" : open;
            text += std::to_string(row.depth) + ' ';
            if (!row.isPoint && order != SortOrder::Tree) {
                text += structure.points()[structure.values()[row.index].point].name + ' ';
            }
            texts.push_back(text + name);
        }
        return texts;
    }

    test::SmallUnit unit;
    ValueTracker tracker{0};
    Folds folds;
    TextFilter filter;
    std::uint64_t ticks = 0;
};

} // namespace

TEST_F(RowListTest, Tree_ShowsAllPointsAndTheValuesOfThoseWithChildren) {
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "-1 inlet1", " 2 Voltage", " 2 Active Power", "+2 socket10",
                                    "+2 socket2"));
}

TEST_F(RowListTest, Fold_HidesAllBelow) {
    folds.set(test::inletId, true);
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "+1 inlet1"));
}

TEST_F(RowListTest, Unfold_ShowsValuesBelowTheirPoint) {
    folds.set(test::socket2Id, false);
    folds.set(test::unitId, false);
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "-1 inlet1", " 2 Voltage", " 2 Active Power", "+2 socket10",
                                    "-2 socket2", " 3 Active Power", " 3 Voltage"));
}

TEST_F(RowListTest, PointWithoutAnythingBelow_CannotBeFolded) {
    unit.point(0x0100FFFFFFFF0000 + (1LL << 56)); // unit2
    EXPECT_EQ("+0 unit2", rows().back()) << "what never was set shows as folded";
    folds.set(0x0200FFFFFFFF0000, false);
    EXPECT_EQ(" 0 unit2", rows().back());
}

TEST_F(RowListTest, Filter_ShowsMatchesAndThePointsAboveWhateverIsFolded) {
    folds.set(test::inletId, true);
    filter = TextFilter("socket power");
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "-1 inlet1", "-2 socket10", " 3 Active Power", "-2 socket2",
                                    " 3 Active Power"));
}

TEST_F(RowListTest, FilterByState_FindsPointsAndValues) {
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_LowAlarm);
    unit.region().points[unit.socket10].state = eStatus_Off;
    filter = TextFilter("low alarm");
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "-1 inlet1", "-2 socket2", " 3 Voltage"));
    filter = TextFilter("off");
    EXPECT_THAT(rows(), ElementsAre("-0 unit1", "-1 inlet1", "-2 socket10"));
}

TEST_F(RowListTest, FilterThatFitsNothing_LeavesNothing) {
    filter = TextFilter("current");
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_THAT(rows(SortOrder::Name), IsEmpty());
}

TEST_F(RowListTest, Filter_AppliesToFlatOrdersToo) {
    filter = TextFilter("voltage");
    EXPECT_THAT(rows(SortOrder::Name), ElementsAre(" 0 inlet1 Voltage", " 0 socket2 Voltage"));
}

TEST_F(RowListTest, Filter_FindsNamesOfValues) {
    filter = TextFilter("inlet1/socket2:act");
    EXPECT_THAT(rows(SortOrder::Name), ElementsAre(" 0 socket2 Active Power"));
}

TEST_F(RowListTest, Names_LeaveTheRestOut) {
    EXPECT_THAT(rows(SortOrder::Tree, WatchedNames({"unit1/inlet1/socket2"})),
                ElementsAre("-0 unit1", "-1 inlet1", "+2 socket2"));
    EXPECT_THAT(rows(SortOrder::Name, WatchedNames({"0x010001ffffff0013"})),
                ElementsAre(" 0 inlet1 Active Power"));
}

TEST_F(RowListTest, Names_HoldWithAFilterToo) {
    filter = TextFilter("socket");
    EXPECT_THAT(rows(SortOrder::Tree, WatchedNames({"unit1/inlet1/socket2"})),
                ElementsAre("-0 unit1", "-1 inlet1", "-2 socket2", " 3 Active Power", " 3 Voltage"));
}

TEST_F(RowListTest, ByState_AlarmsComeFirstElseTheTreesOrder) {
    unit.deliver(unit.socket10Power, 1.0, 1, eStatus_HighWarning);
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_LowAlarm);
    unit.deliver(unit.inletVoltage, 1.0, 1, eStatus_ExpectedValue);
    EXPECT_THAT(rows(SortOrder::State),
                ElementsAre(" 0 socket2 Voltage", " 0 socket10 Active Power", " 0 inlet1 Active Power",
                            " 0 socket2 Active Power", " 0 inlet1 Voltage"));
}

TEST_F(RowListTest, ByState_StatesOutOfUseStandBetweenWarningsAndTheRest) {
    unit.deliver(unit.inletVoltage, 1.0, 1, eStatus_On);
    unit.deliver(unit.inletPower, 1.0, 1, eStatus_Off);
    unit.deliver(unit.socket10Power, 1.0, 1, eStatus_DeviceUpdateError);
    unit.deliver(unit.socket2Power, 1.0, 1, eStatus_NoError);
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_OnChildWarning);
    EXPECT_THAT(rows(SortOrder::State),
                ElementsAre(" 0 socket10 Active Power", " 0 socket2 Voltage", " 0 inlet1 Active Power",
                            " 0 inlet1 Voltage", " 0 socket2 Active Power"));
}

TEST_F(RowListTest, ByName_NumbersCountByTheirSize) {
    EXPECT_THAT(rows(SortOrder::Name),
                ElementsAre(" 0 inlet1 Active Power", " 0 inlet1 Voltage", " 0 socket2 Active Power",
                            " 0 socket2 Voltage", " 0 socket10 Active Power"));
}

TEST_F(RowListTest, ByAge_LongestWithoutADeliveryComesFirst) {
    rows();
    ticks = 1000;
    unit.deliver(unit.inletVoltage, 1.0, 1);
    unit.deliver(unit.socket2Power, 1.0, 1);
    rows();
    ticks = 2000;
    unit.deliver(unit.inletVoltage, 2.0, 2);
    EXPECT_THAT(rows(SortOrder::Age),
                ElementsAre(" 0 inlet1 Active Power", " 0 socket10 Active Power", " 0 socket2 Voltage",
                            " 0 socket2 Active Power", " 0 inlet1 Voltage"));
}

TEST_F(RowListTest, SortName_NamesEachOrder) {
    EXPECT_STREQ("tree", sortName(SortOrder::Tree));
    EXPECT_STREQ("state", sortName(SortOrder::State));
    EXPECT_STREQ("name", sortName(SortOrder::Name));
    EXPECT_STREQ("age", sortName(SortOrder::Age));
}

} // namespace qel::watch
