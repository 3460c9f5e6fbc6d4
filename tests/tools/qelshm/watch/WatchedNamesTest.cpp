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

TEST(WatchedNamesTest, NamesOfValuesAndWildcards_SelectByPattern) {
    WatchedNames const value({"unit1/inlet1:active-power"});
    EXPECT_TRUE(value.hasValue(inletId, key::activePower));
    EXPECT_FALSE(value.hasValue(inletId, key::voltage));
    EXPECT_FALSE(value.hasPoint(inletId)) << "only one of its values";
    WatchedNames const pattern({"unit1/**:voltage", "unit2"});
    EXPECT_TRUE(pattern.hasValue(test::socket2Id, key::voltage));
    EXPECT_FALSE(pattern.hasValue(test::socket2Id, key::activePower));
    EXPECT_TRUE(pattern.hasPoint(0x0200FFFFFFFF0000));
}

TEST(WatchedNamesTest, TextThatIsNoName_IsRefused) {
    EXPECT_THROW(WatchedNames({"unit1", "inlet"}), inspect::PatternError);
}

} // namespace qel::watch
