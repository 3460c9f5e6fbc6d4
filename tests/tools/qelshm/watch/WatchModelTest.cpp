// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchModel.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>

namespace qel::watch {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class WatchModelTest : public testing::Test {
protected:
    WatchModelTest() {
        sut.setPage(100);
        sut.update(unit.snapshot(0));
    }

    void act(std::vector<Action> const& actions) {
        for (auto const action : actions) {
            sut.handle(action);
        }
    }

    void type(std::string const& text) {
        sut.handle(Action::Filter);
        for (char const character : text) {
            sut.type(character);
        }
    }

    /// Names of the visible rows, the selected one marked.
    std::vector<std::string> names() const {
        std::vector<std::string> texts;
        for (auto const& row : sut.visibleRows()) {
            texts.push_back((row.isSelected ? ">" : "") + row.name);
        }
        return texts;
    }

    std::string selected() const {
        for (auto const& row : sut.visibleRows()) {
            if (row.isSelected) {
                return row.name;
            }
        }
        return "(none)";
    }

    RowView rowNamed(std::string const& name) const {
        for (auto const& row : sut.visibleRows()) {
            if (row.name == name) {
                return row;
            }
        }
        ADD_FAILURE() << "there is no row " << name;
        return {};
    }

    test::SmallUnit unit;
    WatchModel sut{WatchedNames({}), std::chrono::milliseconds(250)};
};

} // namespace

TEST_F(WatchModelTest, Header_TellsOfTheUnit) {
    auto const header = sut.header();
    EXPECT_EQ("active", header.condition);
    EXPECT_TRUE(header.isLive);
    EXPECT_EQ("On", header.state);
    EXPECT_EQ(tools::Style::Good, header.style);
    EXPECT_EQ("green", header.led);
    EXPECT_EQ(4U, header.points);
    EXPECT_EQ(5U, header.values);
    EXPECT_EQ(0U, header.structureChanges);
    EXPECT_EQ("no delivery yet", header.delivery);
    EXPECT_FALSE(header.isSilent);
    EXPECT_EQ("2023-06-09T00:00:00Z", header.time);
    EXPECT_EQ("", header.note);
    EXPECT_THAT(sut.message(), IsEmpty());
}

TEST_F(WatchModelTest, Header_FollowsTheGlobalState) {
    unit.region().root.state = eStatus_ChildAlarm;
    sut.update(unit.snapshot(61999));
    EXPECT_EQ("Child Alarm", sut.header().state);
    EXPECT_EQ(tools::Style::Alarm, sut.header().style);
    EXPECT_EQ("red", sut.header().led);
    EXPECT_EQ("2023-06-09T00:01:01Z", sut.header().time);
}

TEST_F(WatchModelTest, Header_TellsTheLastDelivery) {
    unit.deliver(unit.inletPower, 1.0, 5);
    sut.update(unit.snapshot(250));
    EXPECT_EQ("last delivery 0s ago", sut.header().delivery);
    sut.update(unit.snapshot(5250));
    EXPECT_EQ("last delivery 5s ago", sut.header().delivery);
}

TEST_F(WatchModelTest, Rows_ShowNameTypeValueStateAndAge) {
    unit.deliver(unit.inletVoltage, 230.04, 5);
    sut.update(unit.snapshot(3000));
    sut.update(unit.snapshot(5000));

    auto const inlet = rowNamed("inlet1");
    EXPECT_TRUE(inlet.isPoint);
    EXPECT_TRUE(inlet.isFoldable);
    EXPECT_FALSE(inlet.isFolded);
    EXPECT_EQ(1U, inlet.depth);
    EXPECT_EQ("1P", inlet.type);
    EXPECT_EQ("", inlet.value);
    EXPECT_EQ("On", inlet.state);
    EXPECT_EQ("", inlet.age);

    auto const voltage = rowNamed("Voltage");
    EXPECT_FALSE(voltage.isPoint);
    EXPECT_FALSE(voltage.isFoldable);
    EXPECT_EQ(2U, voltage.depth);
    EXPECT_EQ("230.0 V", voltage.value);
    EXPECT_EQ("No Error", voltage.state);
    EXPECT_EQ(tools::Style::Plain, voltage.style);
    EXPECT_EQ("2s", voltage.age);
    EXPECT_EQ("-", rowNamed("Active Power").age) << "never delivered";
}

TEST_F(WatchModelTest, ChangedValue_IsFreshForAMoment) {
    unit.deliver(unit.inletVoltage, 1.0, 5);
    EXPECT_FALSE(rowNamed("Voltage").isFresh);
    sut.update(unit.snapshot(250));
    EXPECT_TRUE(rowNamed("Voltage").isFresh);
    EXPECT_FALSE(rowNamed("Active Power").isFresh);
    sut.update(unit.snapshot(849));
    EXPECT_TRUE(rowNamed("Voltage").isFresh);
    sut.update(unit.snapshot(850));
    EXPECT_FALSE(rowNamed("Voltage").isFresh);
}

TEST_F(WatchModelTest, Cursor_MovesAndStopsAtTheEnds) {
    EXPECT_THAT(names(), ElementsAre(">unit1", "inlet1", "Voltage", "Active Power", "socket10", "socket2"));
    act({Action::Up});
    EXPECT_EQ("unit1", selected());
    act({Action::Down, Action::Down});
    EXPECT_EQ("Voltage", selected());
    act({Action::Up});
    EXPECT_EQ("inlet1", selected());
    act({Action::Last});
    EXPECT_EQ("socket2", selected());
    act({Action::Down, Action::PageDown});
    EXPECT_EQ("socket2", selected());
    act({Action::First});
    EXPECT_EQ("unit1", selected());
}

TEST_F(WatchModelTest, Window_FollowsTheCursor) {
    sut.setPage(3);
    EXPECT_THAT(names(), ElementsAre(">unit1", "inlet1", "Voltage"));
    act({Action::Down, Action::Down});
    EXPECT_EQ(0U, sut.top());
    act({Action::Down});
    EXPECT_THAT(names(), ElementsAre("inlet1", "Voltage", ">Active Power"));
    act({Action::PageDown});
    EXPECT_THAT(names(), ElementsAre("Active Power", "socket10", ">socket2"));
    act({Action::PageUp});
    EXPECT_THAT(names(), ElementsAre(">Voltage", "Active Power", "socket10"));
    sut.setPage(1);
    EXPECT_THAT(names(), ElementsAre(">Voltage"));
    sut.setPage(0);
    EXPECT_THAT(names(), ElementsAre(">Voltage"));
    sut.setPage(6);
    EXPECT_THAT(names(), ElementsAre("unit1", "inlet1", ">Voltage", "Active Power", "socket10", "socket2"));
}

TEST_F(WatchModelTest, Toggle_FoldsAndUnfolds) {
    act({Action::Down, Action::Toggle});
    EXPECT_THAT(names(), ElementsAre("unit1", ">inlet1"));
    act({Action::Toggle});
    EXPECT_EQ(6U, sut.rowCount());
    act({Action::Down, Action::Toggle});
    EXPECT_EQ(6U, sut.rowCount()) << "a value has nothing to fold";
}

TEST_F(WatchModelTest, Open_UnfoldsThenGoesDown) {
    act({Action::Last, Action::Open});
    EXPECT_THAT(names(), ElementsAre("unit1", "inlet1", "Voltage", "Active Power", "socket10", ">socket2",
                                     "Active Power", "Voltage"));
    act({Action::Open});
    EXPECT_EQ(6U, sut.selected());
    act({Action::Open});
    EXPECT_EQ(6U, sut.selected()) << "a value has nothing below";
}

TEST_F(WatchModelTest, Close_FoldsThenGoesUp) {
    act({Action::Last, Action::Open, Action::Open, Action::Close});
    EXPECT_EQ("socket2", selected()) << "from a value to its point";
    act({Action::Close});
    EXPECT_EQ(6U, sut.rowCount());
    act({Action::Close});
    EXPECT_EQ("inlet1", selected()) << "from a folded point to the one above";
    act({Action::Close, Action::Close});
    EXPECT_EQ("unit1", selected());
    act({Action::Close, Action::Close});
    EXPECT_THAT(names(), ElementsAre(">unit1")) << "nothing above a top-level point";
}

TEST_F(WatchModelTest, OpenAllAndCloseAll_KeepTheBranchSelected) {
    act({Action::Last, Action::OpenAll});
    EXPECT_EQ(9U, sut.rowCount());
    EXPECT_EQ("socket2", selected());
    act({Action::CloseAll});
    EXPECT_THAT(names(), ElementsAre(">unit1"));
}

TEST_F(WatchModelTest, Sort_GoesThroughTheOrders) {
    std::vector<SortOrder> orders;
    for (int step = 0; step < 5; ++step) {
        orders.push_back(sut.order());
        act({Action::Sort});
    }
    EXPECT_THAT(orders, ElementsAre(SortOrder::Tree, SortOrder::State, SortOrder::Name, SortOrder::Age,
                                    SortOrder::Tree));
}

TEST_F(WatchModelTest, FlatOrder_ShowsPathsAndKeepsTheSelectedValue) {
    act({Action::Down, Action::Down, Action::Down, Action::Sort, Action::Sort});
    EXPECT_THAT(names(), ElementsAre(">unit1/inlet1  Active Power", "unit1/inlet1  Voltage",
                                     "unit1/inlet1/socket2  Active Power", "unit1/inlet1/socket2  Voltage",
                                     "unit1/inlet1/socket10  Active Power"));
}

TEST_F(WatchModelTest, ToggleInAFlatOrder_ShowsTheValueInTheTree) {
    act({Action::CloseAll, Action::Sort, Action::Sort, Action::Last, Action::Toggle});
    EXPECT_EQ(SortOrder::Tree, sut.order());
    EXPECT_THAT(names(), ElementsAre("unit1", "inlet1", "Voltage", "Active Power", "socket10",
                                     ">Active Power", "socket2"));
}

TEST_F(WatchModelTest, Filter_IsAppliedWhileTyped) {
    type("socket2");
    EXPECT_TRUE(sut.isTyping());
    EXPECT_EQ("socket2", sut.filterText());
    EXPECT_THAT(names(), ElementsAre(">unit1", "inlet1", "socket2", "Active Power", "Voltage"));
    sut.type(' ');
    sut.type('g');
    EXPECT_THAT(names(), ElementsAre(">unit1", "inlet1", "socket2", "Voltage"));
    sut.erase();
    sut.erase();
    EXPECT_EQ("socket2", sut.filterText());
    EXPECT_EQ(5U, sut.rowCount());
    sut.endTyping();
    EXPECT_FALSE(sut.isTyping());
    EXPECT_EQ(5U, sut.rowCount());
    act({Action::Clear});
    EXPECT_EQ("", sut.filterText());
    EXPECT_EQ(6U, sut.rowCount());
}

TEST_F(WatchModelTest, EraseWithoutText_DoesNothing) {
    act({Action::Filter});
    sut.erase();
    EXPECT_EQ("", sut.filterText());
    EXPECT_TRUE(sut.isTyping());
}

TEST_F(WatchModelTest, FilterThatFitsNothing_LeavesACursorThatComesBack) {
    act({Action::Last});
    type("xyz");
    EXPECT_EQ(0U, sut.rowCount());
    EXPECT_EQ("", sut.detail().path);
    act({Action::Up, Action::Down, Action::PageUp, Action::First, Action::Last, Action::Toggle, Action::Open,
         Action::Close, Action::OpenAll});
    EXPECT_EQ(0U, sut.rowCount());
    act({Action::Clear});
    EXPECT_EQ("socket2", selected());
}

TEST_F(WatchModelTest, FoldingWithAFilter_DoesNothing) {
    type("socket");
    auto const before = sut.rowCount();
    act({Action::Toggle, Action::Close});
    EXPECT_EQ(before, sut.rowCount());
}

TEST_F(WatchModelTest, Help_IsEndedByAnyAction) {
    act({Action::Help});
    EXPECT_TRUE(sut.isHelp());
    act({Action::Quit});
    EXPECT_FALSE(sut.isHelp());
    EXPECT_FALSE(sut.isDone());
    act({Action::Quit});
    EXPECT_TRUE(sut.isDone());
}

TEST_F(WatchModelTest, Follow_GoesToEachNewAlarm) {
    act({Action::Follow});
    EXPECT_TRUE(sut.isFollowing());
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighWarning);
    sut.update(unit.snapshot(250));
    EXPECT_EQ("unit1", selected()) << "a warning is no alarm";
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(500));
    EXPECT_THAT(names(), ElementsAre("unit1", "inlet1", "Voltage", "Active Power", "socket10", "socket2",
                                     "Active Power", ">Voltage"));
    act({Action::First});
    unit.deliver(unit.socket2Voltage, 2.0, 1, eStatus_Lost);
    sut.update(unit.snapshot(750));
    EXPECT_EQ("unit1", selected()) << "it was an alarm before";
}

TEST_F(WatchModelTest, WithoutFollow_TheCursorStays) {
    act({Action::Follow, Action::Follow});
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(250));
    EXPECT_EQ("unit1", selected());
}

TEST_F(WatchModelTest, ChangedStructure_IsCountedAndKeepsTheCursor) {
    act({Action::Last});
    unit.value(unit.unit, 4);
    sut.update(unit.snapshot(250));
    EXPECT_EQ(1U, sut.header().structureChanges);
    EXPECT_EQ("socket2", selected());
    sut.update(unit.snapshot(500));
    EXPECT_EQ(1U, sut.header().structureChanges);
    unit.removeLastChild(unit.inlet);
    sut.update(unit.snapshot(750));
    EXPECT_EQ(2U, sut.header().structureChanges);
    EXPECT_EQ("socket10", selected()) << "what stands in its place now";
}

TEST_F(WatchModelTest, ValueWhosePointWasFolded_HandsTheCursorToIt) {
    act({Action::Last, Action::Open, Action::Last, Action::Close, Action::Close});
    EXPECT_EQ("socket2", selected());
}

TEST_F(WatchModelTest, InactiveRegion_IsToldAndTheCursorComesBack) {
    act({Action::Last});
    unit.region().root.version = 0xFF;
    sut.update(unit.snapshot(250));
    EXPECT_EQ("inactive", sut.header().condition);
    EXPECT_FALSE(sut.header().isLive);
    EXPECT_EQ("", sut.header().state);
    EXPECT_EQ(0U, sut.header().points);
    EXPECT_THAT(sut.message(), ElementsAre("Waiting: the region is not active: its version is 255, not 32.",
                                           "The table appears as soon as the region is active."));
    EXPECT_THAT(names(), IsEmpty());
    unit.region().root.version = shm::ACTIVE_VERSION;
    sut.update(unit.snapshot(500));
    EXPECT_EQ("socket2", selected());
    EXPECT_EQ(0U, sut.header().structureChanges) << "the structure is the same as before";
}

TEST_F(WatchModelTest, EachWayNotToBeThere_IsTold) {
    struct Case {
        inspect::RegionSource source;
        inspect::Image image;
        char const* condition;
        char const* text;
    };
    auto const image = unit.image();
    for (auto const& current : {
             Case{{inspect::Opening::Absent, 0, false, {}}, {}, "absent", "there is no shared-memory object"},
             Case{{inspect::Opening::Unreadable, EACCES, false, {}}, {}, "unreadable", "Permission denied"},
             Case{{inspect::Opening::Opened, 0, true, {}}, image, "replaced", "was replaced or removed"},
             Case{{}, inspect::Image(&unit.region(), 100), "too short", "too short: 100 of 320032 bytes"},
         }) {
        sut.update({current.image, current.source, 1, 0, 250});
        EXPECT_EQ(current.condition, sut.header().condition);
        ASSERT_FALSE(sut.message().empty()) << current.condition;
        EXPECT_THAT(sut.message().front(), HasSubstr(current.text));
        EXPECT_EQ(0U, sut.rowCount()) << current.condition;
        EXPECT_EQ("", sut.detail().path);
    }
}

TEST_F(WatchModelTest, AnotherObject_IsNotedForAWhile) {
    unit.value(unit.unit, 4);
    sut.update(unit.snapshot(1000, 2));
    EXPECT_EQ("new shared-memory object opened", sut.header().note);
    EXPECT_EQ(0U, sut.header().structureChanges) << "not a change of the same unit";
    sut.update(unit.snapshot(10999, 2));
    EXPECT_EQ("new shared-memory object opened", sut.header().note);
    sut.update(unit.snapshot(11000, 2));
    EXPECT_EQ("", sut.header().note);
}

TEST_F(WatchModelTest, FirstObject_IsNotNoted) {
    WatchModel late(WatchedNames({}), std::chrono::milliseconds(250));
    late.update({{}, {inspect::Opening::Absent, 0, false, {}}, 0, 0, 0});
    late.update(unit.snapshot(250, 1));
    EXPECT_EQ("", late.header().note);
    EXPECT_EQ(0U, late.header().structureChanges);
    EXPECT_EQ(6U, late.rowCount());
}

TEST_F(WatchModelTest, Detail_ShowsTheSelectedPointWithItsFirstValue) {
    act({Action::Down});
    auto const detail = sut.detail();
    EXPECT_EQ("unit1/inlet1", detail.path);
    EXPECT_EQ("0x010001ffffff0000", detail.svid);
    EXPECT_EQ("1P", detail.type);
    EXPECT_EQ("On", detail.state);
    ASSERT_EQ(2U, detail.values.size());
    EXPECT_TRUE(detail.values[0].isSelected);
    EXPECT_FALSE(detail.values[1].isSelected);
    EXPECT_EQ("Voltage", detail.graphName);
    EXPECT_EQ("never", detail.delivered);
    EXPECT_EQ(1U, detail.curves.size());
}

TEST_F(WatchModelTest, Detail_ShowsTheSelectedValue) {
    act({Action::Down, Action::Down, Action::Down});
    unit.deliver(unit.inletPower, 50.0, 1686296074000);
    sut.update(unit.snapshot(100));
    unit.deliver(unit.inletPower, 100.0, 1686296078000);
    sut.update(unit.snapshot(4000));
    auto const detail = sut.detail();
    EXPECT_EQ("unit1/inlet1", detail.path);
    EXPECT_EQ("Active Power", detail.graphName);
    ASSERT_EQ(1U, detail.curves.size());
    EXPECT_EQ("inlet1 Active Power", detail.curves[0].name);
    EXPECT_EQ(test::activePower, detail.curves[0].key);
    EXPECT_EQ("2023-06-09T07:34:38Z", detail.delivered);
    EXPECT_TRUE(detail.values[1].isSelected);
    auto const* const history = detail.curves[0].history;
    ASSERT_NE(nullptr, history);
    EXPECT_EQ(100.0F, history->at(detail.newestBucket).last);
    EXPECT_EQ(50.0F, history->at(detail.newestBucket - 2).last);
}

TEST_F(WatchModelTest, DetailOfAPointWithoutValues_HasNoGraph) {
    auto const detail = sut.detail();
    EXPECT_EQ("unit1", detail.path);
    EXPECT_TRUE(detail.curves.empty());
    EXPECT_EQ("", detail.graphName);
}

TEST_F(WatchModelTest, GraphSpan_IsNotLongerThanWhatWasSeen) {
    act({Action::Down});
    sut.update(unit.snapshot(7000));
    EXPECT_EQ(7000U, sut.detail().spanOf(60));
    EXPECT_EQ(4000U, sut.detail().spanOf(2));
    sut.update(unit.snapshot(1000000));
    EXPECT_EQ(120000U, sut.detail().spanOf(60));
    EXPECT_EQ(180000U, sut.detail().spanOf(1000)) << "no more than is kept";
    act({Action::LongerSpan});
    EXPECT_EQ(20000U, sut.detail().bucketMs);
    act({Action::LongerSpan, Action::LongerSpan});
    EXPECT_EQ(120000U, sut.detail().bucketMs) << "the longest";
    act({Action::ShorterSpan, Action::ShorterSpan, Action::ShorterSpan});
    EXPECT_EQ(2000U, sut.detail().bucketMs);
}

TEST_F(WatchModelTest, SlowLooks_FillABucketEach) {
    WatchModel slow(WatchedNames({}), std::chrono::seconds(60));
    slow.update(unit.snapshot(0));
    EXPECT_EQ(60000U, slow.detail().bucketMs);
}

TEST_F(WatchModelTest, AlarmWhileTheFilterMatchesNothing_MovesNothing) {
    act({Action::Follow});
    type("zzz");
    sut.endTyping();
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(250));
    EXPECT_EQ(0U, sut.rowCount());
    act({Action::Clear});
    EXPECT_EQ("unit1", selected());
}

TEST_F(WatchModelTest, AlarmThatTheFilterHides_LeavesTheCursorAlone) {
    act({Action::Follow});
    type("inlet1 power");
    unit.deliver(unit.inletPower, 1.0, 1, eStatus_HighAlarm);
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(250));
    EXPECT_EQ("Active Power", selected()) << "the newest that can be shown";
}

TEST_F(WatchModelTest, EveryActionWithoutRows_DoesNothing) {
    type("zzz");
    sut.endTyping();
    for (int action = 0; action <= static_cast<int>(Action::Quit); ++action) {
        sut.handle(static_cast<Action>(action));
        sut.click(0);
        sut.setPage(3);
        sut.update(unit.snapshot(static_cast<std::uint64_t>(action)));
        if (!sut.filterText().empty()) {
            EXPECT_EQ(0U, sut.rowCount()) << action;
        } else {
            type("zzz"); // Clear removed it
            sut.endTyping();
        }
    }
    act({Action::Pause});
    ASSERT_FALSE(sut.isPaused());
    unit.region().root.version = 0;
    sut.update(unit.snapshot(9000));
    for (int action = 0; action <= static_cast<int>(Action::Quit); ++action) {
        sut.handle(static_cast<Action>(action));
        EXPECT_EQ(0U, sut.rowCount()) << action;
    }
}

TEST_F(WatchModelTest, SortOfASelectedPoint_KeepsItByItsFirstValue) {
    act({Action::Down, Action::Sort});
    EXPECT_EQ("unit1/inlet1  Voltage", selected());
    act({Action::Sort, Action::Sort, Action::Sort});
    EXPECT_EQ(SortOrder::Tree, sut.order());
    act({Action::Last, Action::Sort});
    EXPECT_EQ("unit1/inlet1/socket2  Active Power", selected());
}

TEST_F(WatchModelTest, SortByState_KeepsTheSelectedValue) {
    act({Action::Last, Action::Open, Action::Last});
    ASSERT_EQ("Voltage", selected());
    unit.deliver(unit.inletPower, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(250));
    act({Action::Sort});
    EXPECT_EQ("unit1/inlet1/socket2  Voltage", selected());
    EXPECT_NE(0U, sut.selected());
}

TEST_F(WatchModelTest, NextAlarm_GoesRoundTheUnitWhateverIsFolded) {
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    unit.deliver(unit.inletVoltage, 1.0, 1, eStatus_Lost);
    sut.update(unit.snapshot(250));
    act({Action::NextAlarm});
    EXPECT_EQ(2U, sut.selected()) << "the inlet's voltage";
    act({Action::NextAlarm});
    EXPECT_EQ("Voltage", selected());
    EXPECT_EQ("unit1/inlet1/socket2", sut.detail().path);
    act({Action::NextAlarm});
    EXPECT_EQ("unit1/inlet1", sut.detail().path);
    act({Action::PreviousAlarm});
    EXPECT_EQ("unit1/inlet1/socket2", sut.detail().path);
}

TEST_F(WatchModelTest, NextAlarmWithoutAny_IsSaidUntilTheNextAction) {
    act({Action::NextAlarm});
    EXPECT_EQ("no value is in alarm", sut.header().note);
    EXPECT_EQ("unit1", selected());
    act({Action::Down});
    EXPECT_EQ("", sut.header().note);
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(250));
    type("socket10");
    act({Action::NextAlarm});
    EXPECT_EQ("no value in this list is in alarm", sut.header().note);
}

TEST_F(WatchModelTest, Pause_KeepsWhatIsShownAndMissesNothing) {
    act({Action::Pause});
    unit.deliver(unit.inletPower, 77.0, 1, eStatus_HighAlarm);
    sut.update(unit.snapshot(61000));
    EXPECT_TRUE(sut.isPaused());
    EXPECT_EQ("-", rowNamed("Active Power").value);
    EXPECT_EQ("2023-06-09T00:00:00Z", sut.header().time);
    EXPECT_EQ("paused 1m ago, 1 event since; p continues", sut.header().note);
    act({Action::Down, Action::Down, Action::Down, Action::Pause});
    EXPECT_FALSE(sut.isPaused());
    EXPECT_EQ("77.0 W", rowNamed("Active Power").value);
    EXPECT_EQ(77.0F, sut.detail().curves.at(0).history->at(sut.detail().newestBucket).last);
    act({Action::Events});
    EXPECT_EQ(1U, sut.paneLines().size());
}

TEST_F(WatchModelTest, StructureThatGoesDuringAPause_IsStillShown) {
    act({Action::Last, Action::Pause});
    unit.removeLastChild(unit.inlet);
    unit.removeLastChild(unit.inlet);
    sut.update(unit.snapshot(250));
    EXPECT_EQ("socket2", selected());
    act({Action::Open, Action::Mark, Action::Why, Action::NextAlarm, Action::Pause});
    EXPECT_EQ(2U, sut.rowCount()) << "a point without children is folded";
}

TEST_F(WatchModelTest, Statistics_AreShownForEachValueAndBegunAnew) {
    EXPECT_FALSE(sut.settings().hasStatistics);
    act({Action::Statistics});
    EXPECT_TRUE(sut.settings().hasStatistics);
    unit.deliver(unit.inletVoltage, 220.0, 1);
    sut.update(unit.snapshot(1000));
    unit.deliver(unit.inletVoltage, 240.0, 2);
    sut.update(unit.snapshot(2000));
    auto const seen = rowNamed("Voltage").statistics;
    EXPECT_EQ("220.0 V", seen.minimum);
    EXPECT_EQ("240.0 V", seen.maximum);
    EXPECT_EQ("230.0 V", seen.mean);
    EXPECT_EQ("1.0/s", seen.rate);
    EXPECT_EQ("", rowNamed("Active Power").statistics.mean) << "never delivered";
    act({Action::Restart});
    sut.update(unit.snapshot(42000));
    EXPECT_EQ("240.0 V", rowNamed("Voltage").statistics.minimum);
    EXPECT_EQ("0.0/s", rowNamed("Voltage").statistics.rate);
    unit.deliver(unit.inletVoltage, 230.0, 3);
    sut.update(unit.snapshot(62000));
    EXPECT_EQ("1.0/m", rowNamed("Voltage").statistics.rate);
}

TEST_F(WatchModelTest, Marks_KeepCurvesInTheGraph) {
    act({Action::Down, Action::Down, Action::Mark});
    EXPECT_TRUE(rowNamed("Voltage").isMarked);
    EXPECT_EQ(1U, sut.detail().curves.size()) << "the selected one is there already";
    act({Action::Down});
    ASSERT_EQ(2U, sut.detail().curves.size());
    EXPECT_EQ("inlet1 Active Power", sut.detail().curves[0].name);
    EXPECT_EQ("inlet1 Voltage", sut.detail().curves[1].name);
    act({Action::Mark, Action::Down, Action::Mark, Action::Down});
    EXPECT_EQ(CurveMarks::most + 1, sut.detail().curves.size());
    act({Action::Open, Action::Down, Action::Down, Action::Mark});
    EXPECT_THAT(sut.header().note, HasSubstr("3 values are marked, which is the most"));
    act({Action::First, Action::Down, Action::Mark});
    EXPECT_FALSE(rowNamed("Voltage").isMarked) << "a point stands for its first value";
    act({Action::First, Action::Mark});
    EXPECT_EQ("this point has no value to mark", sut.header().note);
}

TEST_F(WatchModelTest, WhyPane_ExplainsTheSelectedPoint) {
    unit.deliver(unit.socket2Voltage, 255.0, 1, eStatus_HighAlarm);
    unit.region().points[unit.socket2].state = eStatus_OnAlarm;
    sut.update(unit.snapshot(250));
    sut.setPaneLines(10);
    act({Action::NextAlarm, Action::Why});
    EXPECT_EQ(Pane::Why, sut.pane());
    std::vector<std::string> texts;
    for (auto const& line : sut.paneLines()) {
        texts.push_back(line.text);
    }
    EXPECT_THAT(texts, ElementsAre("unit1/inlet1/socket2 is On, Alarm",
                                   "unit1/inlet1/socket2:voltage  255.0 V  High Alarm",
                                   "  unit1/inlet1/socket2  On, Alarm  alarm of a value"));
    sut.setPaneLines(1);
    act({Action::PaneDown, Action::PaneDown, Action::PaneDown, Action::PaneDown});
    EXPECT_EQ(texts[2], sut.paneLines().at(0).text);
    act({Action::PaneUp});
    EXPECT_EQ(texts[1], sut.paneLines().at(0).text);
    act({Action::Why});
    EXPECT_EQ(Pane::Graph, sut.pane());
}

TEST_F(WatchModelTest, EventPane_EndsWithTheNewest) {
    sut.setPaneLines(2);
    act({Action::Events});
    EXPECT_THAT(sut.paneLines(), IsEmpty());
    for (unsigned round = 1; round <= 3; ++round) {
        unit.deliver(unit.inletPower, round, round, round % 2 == 0 ? eStatus_NoError : eStatus_HighAlarm);
        sut.update(unit.snapshot(round * std::uint64_t{1000}));
    }
    ASSERT_EQ(2U, sut.paneLines().size());
    EXPECT_EQ("2023-06-09T00:00:03Z  unit1/inlet1:active-power: No Error => High Alarm",
              sut.paneLines()[1].text);
    EXPECT_EQ(tools::Style::Alarm, sut.paneLines()[1].style);
    act({Action::PaneUp, Action::PaneUp});
    EXPECT_EQ("2023-06-09T00:00:01Z  unit1/inlet1:active-power: No Error => High Alarm",
              sut.paneLines()[0].text);
    act({Action::PaneDown});
    EXPECT_THAT(sut.paneLines()[1].text, HasSubstr("00:00:03Z"));
}

TEST_F(WatchModelTest, Click_SelectsThenFolds) {
    sut.click(1);
    EXPECT_EQ("inlet1", selected());
    sut.click(1);
    EXPECT_THAT(names(), ElementsAre("unit1", ">inlet1"));
    sut.click(5);
    EXPECT_EQ("inlet1", selected()) << "there is no row";
}

TEST_F(WatchModelTest, Wheel_MovesTheWindow) {
    sut.setPage(2);
    act({Action::ScrollDown});
    EXPECT_THAT(names(), ElementsAre(">Active Power", "socket10"));
    act({Action::ScrollDown});
    EXPECT_THAT(names(), ElementsAre(">socket10", "socket2"));
    act({Action::ScrollUp, Action::ScrollUp});
    EXPECT_THAT(names(), ElementsAre("unit1", ">inlet1"));
}

TEST_F(WatchModelTest, Completion_ExtendsTheFilter) {
    type("unit1/inl");
    sut.complete();
    EXPECT_EQ("unit1/inlet1", sut.filterText());
    EXPECT_EQ(9U, sut.rowCount());
}

TEST_F(WatchModelTest, Settings_AreTakenAndReturned) {
    WatchModel kept(WatchedNames({}), std::chrono::milliseconds(250), {}, {SortOrder::Name, true, 2});
    kept.update(unit.snapshot(0));
    kept.setPage(100);
    EXPECT_EQ(5U, kept.rowCount());
    EXPECT_EQ(120000U, kept.detail().bucketMs);
    EXPECT_EQ((WatchSettings{SortOrder::Name, true, 2}), kept.settings());
}

} // namespace qel::watch
