// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueCounts.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

TEST(ValueCountsTest, Values_CountByStateAndDelivery) {
    test::SmallUnit unit;
    unit.deliver(unit.inletVoltage, 1.0, 1, eStatus_HighAlarm);
    unit.deliver(unit.inletPower, 1.0, 1, eStatus_LowWarning);
    unit.deliver(unit.socket10Power, 1.0, 1, eStatus_Lost);
    unit.deliver(unit.socket2Power, 1.0, 1);
    WatchedUnit watched{WatchedNames({}), std::chrono::milliseconds(250)};
    watched.update(unit.snapshot(0));
    unit.deliver(unit.inletVoltage, 2.0, 2, eStatus_HighAlarm);
    watched.update(unit.snapshot(3000));
    auto const sut = countValues(watched, {std::chrono::seconds(2), std::chrono::seconds(2)});
    EXPECT_EQ(1U, sut.alarm);
    EXPECT_EQ(1U, sut.warning);
    EXPECT_EQ(1U, sut.lost);
    EXPECT_EQ(1U, sut.never);
    EXPECT_EQ(2U, sut.stale) << "the inlet's power and that of socket 2";
}

} // namespace qel::watch
