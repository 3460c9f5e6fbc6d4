// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedNames.h"

#include "format/ValueKeys.h"
#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace key = shm::key;
using test::inletId;
using test::unitId;

TEST(WatchedNamesTest, NoNames_AreEverything) {
    WatchedNames const sut({});
    EXPECT_TRUE(sut.isEverything());
    EXPECT_TRUE(sut.hasPoint(inletId));
    EXPECT_TRUE(sut.hasValue(inletId, key::voltage));
}

TEST(WatchedNamesTest, Point_StandsForAllItsValues) {
    for (auto const* const name : {"unit1/inlet1", "0x010001ffffff0000", "72059793061117952"}) {
        WatchedNames const sut({name});
        EXPECT_FALSE(sut.isEverything());
        EXPECT_TRUE(sut.hasPoint(inletId)) << name;
        EXPECT_TRUE(sut.hasValue(inletId, key::voltage)) << name;
        EXPECT_FALSE(sut.hasPoint(unitId)) << name;
        EXPECT_FALSE(sut.hasValue(unitId, key::voltage)) << name;
    }
}

TEST(WatchedNamesTest, Value_StandsForItself) {
    WatchedNames const sut({"0x010001ffffff0013"});
    EXPECT_FALSE(sut.hasPoint(inletId));
    EXPECT_TRUE(sut.hasValue(inletId, key::activePower));
    EXPECT_FALSE(sut.hasValue(inletId, key::voltage));
}

TEST(WatchedNamesTest, IsName_TakesIdsAndPaths) {
    for (auto const* const name : {"unit1", "UNIT1/Inlet2", "group1", "unit1/sensor1.2", "0x1", "-5"}) {
        EXPECT_TRUE(WatchedNames::isName(name)) << name;
    }
    for (auto const* const name : {"", "0x", "inlet", "unit1/", "unit1/inlet1/power", "1.5"}) {
        EXPECT_FALSE(WatchedNames::isName(name)) << name;
    }
}

} // namespace qel::watch
