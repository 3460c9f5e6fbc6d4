// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/HeaderView.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

class HeaderViewTest : public testing::Test {
protected:
    HeaderView header() const { return headerOf(watched, freshness); }

    test::SmallUnit unit;
    WatchedUnit watched{WatchedNames({}), std::chrono::milliseconds(250)};
    Freshness freshness;
};

} // namespace

TEST_F(HeaderViewTest, SilenceBeyondTheBound_IsSaid) {
    watched.update(unit.snapshot(0));
    unit.deliver(unit.inletPower, 1.0, 5);
    watched.update(unit.snapshot(1000));
    watched.update(unit.snapshot(11000));
    EXPECT_EQ("last delivery 10s ago", header().delivery);
    EXPECT_FALSE(header().isSilent);
    watched.update(unit.snapshot(37000));
    EXPECT_EQ("nothing delivered for 36s", header().delivery);
    EXPECT_TRUE(header().isSilent);
    freshness.unit = std::chrono::minutes(1);
    EXPECT_FALSE(header().isSilent);
}

TEST_F(HeaderViewTest, SilenceSinceTheStart_IsAtLeastAsLong) {
    watched.update(unit.snapshot(0));
    EXPECT_EQ("no delivery yet", header().delivery);
    watched.update(unit.snapshot(15000));
    EXPECT_EQ("nothing delivered for >15s", header().delivery);
    EXPECT_TRUE(header().isSilent);
}

TEST_F(HeaderViewTest, UnitWithoutValues_IsNotSilent) {
    test::TestUnit bare;
    bare.point(test::unitId);
    watched.update(bare.snapshot(0));
    watched.update(bare.snapshot(60000));
    EXPECT_FALSE(header().isSilent);
}

} // namespace qel::watch
