// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/NameCompletion.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

namespace qel::watch {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NameCompletionTest : public testing::Test {
protected:
    NameCompletionTest() { structure.update(unit.image()); }

    std::string complete(std::string const& text) { return sut.complete(text, structure); }

    test::SmallUnit unit;
    UnitStructure structure{WatchedNames({})};
    NameCompletion sut;
};

} // namespace

TEST_F(NameCompletionTest, OnlyName_IsCompleted) {
    EXPECT_EQ("unit1", complete("u"));
    EXPECT_EQ("unit1/inlet1/socket10", complete("UNIT1/inlet1/socket1"));
    EXPECT_EQ("unit1/inlet1:voltage", complete("unit1/inlet1:v"));
}

TEST_F(NameCompletionTest, SeveralNames_AreCompletedToWhatTheyShareAndOfferedInTurn) {
    EXPECT_EQ("unit1/inlet1/socket", complete("unit1/inlet1/s"));
    EXPECT_THAT(sut.candidates(), ElementsAre("unit1/inlet1/socket10", "unit1/inlet1/socket2"));
    EXPECT_EQ("unit1/inlet1/socket10", complete("unit1/inlet1/socket"));
    EXPECT_EQ("unit1/inlet1/socket2", complete("unit1/inlet1/socket10"));
    EXPECT_EQ("unit1/inlet1/socket10", complete("unit1/inlet1/socket2"));
    sut.reset();
    EXPECT_THAT(sut.candidates(), IsEmpty());
    EXPECT_EQ("unit1/inlet1/socket2:", complete("unit1/inlet1/socket2"));
}

TEST_F(NameCompletionTest, LastWord_IsTheOneThatIsCompleted) {
    EXPECT_EQ("alarm socket", complete("alarm soc"));
    EXPECT_EQ("socket2 active-power", complete("socket2 act"));
}

TEST_F(NameCompletionTest, NothingThatFits_LeavesTheText) {
    EXPECT_EQ("pump", complete("pump"));
    EXPECT_THAT(sut.candidates(), IsEmpty());
    structure.update(inspect::Image());
    EXPECT_EQ("", complete(""));
}

TEST_F(NameCompletionTest, EmptyWord_BeginsWithTheTopLevel) {
    EXPECT_EQ("unit1", complete(""));
    EXPECT_EQ("alarm unit1", complete("alarm "));
}

} // namespace qel::watch
