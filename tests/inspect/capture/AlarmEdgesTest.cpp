// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/AlarmEdges.h"

#include "tests/inspect/capture/CapturedUnit.h"

#include <gtest/gtest.h>

namespace qel::inspect {

TEST(AlarmEdgesTest, Alarm_BeginsOnce) {
    AlarmEdges sut;
    EXPECT_FALSE(sut.add(test::unitWith(5, 1.0)));
    EXPECT_TRUE(sut.add(test::unitWith(5, 1.0, eStatus_HighAlarm)));
    EXPECT_FALSE(sut.add(test::unitWith(5, 2.0, eStatus_HighAlarm)));
    EXPECT_FALSE(sut.add(test::unitWith(5, 2.0)));
    EXPECT_TRUE(sut.add(test::unitWith(5, 1.0, eStatus_LowAlarm)));
}

TEST(AlarmEdgesTest, AnotherValue_IsAnotherAlarm) {
    AlarmEdges sut;
    sut.add(test::unitWith(5, 1.0, eStatus_HighAlarm));
    EXPECT_TRUE(sut.add(test::unitWith(8, 1.0, eStatus_HighAlarm)));
}

TEST(AlarmEdgesTest, Patterns_SelectTheValuesThatCount) {
    AlarmEdges sut({ValuePattern("**/socket1:voltage")});
    EXPECT_FALSE(sut.add(test::unitWith(8, 1.0, eStatus_HighAlarm)));
    EXPECT_TRUE(sut.add(test::unitWith(5, 1.0, eStatus_HighAlarm)));
    EXPECT_FALSE(sut.add(test::unitWith(8, 1.0, eStatus_HighAlarm)));
}

TEST(AlarmEdgesTest, FirstImageInAlarm_Counts) {
    EXPECT_TRUE(AlarmEdges().add(test::unitWith(5, 1.0, eStatus_Lost)));
    EXPECT_FALSE(AlarmEdges().add(test::unitWith(5, 1.0, eStatus_HighWarning)));
}

TEST(AlarmEdgesTest, InactiveImage_ChangesNothing) {
    AlarmEdges sut;
    EXPECT_TRUE(sut.add(test::unitWith(5, 1.0, eStatus_HighAlarm)));
    EXPECT_FALSE(sut.add(test::wipedUnit()));
    EXPECT_FALSE(sut.add(test::unitWith(5, 1.0, eStatus_HighAlarm)));
}

} // namespace qel::inspect
