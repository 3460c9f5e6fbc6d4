// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/AlarmSearch.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

// Indexes of the values in the structure of the small unit.
constexpr std::uint32_t inletPowerIndex = 1;
constexpr std::uint32_t socket2VoltageIndex = 4;

class AlarmSearchTest : public testing::Test {
protected:
    AlarmSearchTest() {
        unit.deliver(unit.inletPower, 1.0, 1, eStatus_LowAlarm);
        unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_Lost);
        watched.update(unit.snapshot(0));
    }

    test::SmallUnit unit;
    WatchedUnit watched{WatchedNames({}), std::chrono::milliseconds(250)};
};

Row valueRow(std::uint32_t index) {
    return {false, index, 0, false, false, index};
}

} // namespace

TEST_F(AlarmSearchTest, Tree_IsSearchedRoundItsEnds) {
    EXPECT_EQ(inletPowerIndex, alarmInTree(watched, nullptr, true));
    EXPECT_EQ(socket2VoltageIndex, alarmInTree(watched, nullptr, false));
    auto const first = valueRow(inletPowerIndex);
    EXPECT_EQ(socket2VoltageIndex, alarmInTree(watched, &first, true));
    EXPECT_EQ(socket2VoltageIndex, alarmInTree(watched, &first, false));
    auto const last = valueRow(socket2VoltageIndex);
    EXPECT_EQ(inletPowerIndex, alarmInTree(watched, &last, true));
    Row const inlet{true, 1, 0, true, false, test::inletId};
    EXPECT_EQ(inletPowerIndex, alarmInTree(watched, &inlet, true)) << "the values of a point follow it";
}

TEST_F(AlarmSearchTest, Rows_AreSearchedInTheirOrder) {
    RowCursor cursor;
    cursor.show({valueRow(socket2VoltageIndex), valueRow(0), valueRow(inletPowerIndex)});
    EXPECT_EQ(inletPowerIndex, alarmInRows(watched, cursor, true));
    cursor.select(2);
    EXPECT_EQ(socket2VoltageIndex, alarmInRows(watched, cursor, true));
    EXPECT_EQ(socket2VoltageIndex, alarmInRows(watched, cursor, false));
}

TEST_F(AlarmSearchTest, NoAlarm_IsNotFound) {
    EXPECT_FALSE(alarmInRows(watched, RowCursor(), true));
    unit.deliver(unit.inletPower, 1.0, 1);
    unit.deliver(unit.socket2Voltage, 1.0, 1, eStatus_HighWarning);
    watched.update(unit.snapshot(250));
    EXPECT_FALSE(alarmInTree(watched, nullptr, true));
    EXPECT_FALSE(alarmInTree(watched, nullptr, false));
}

} // namespace qel::watch
