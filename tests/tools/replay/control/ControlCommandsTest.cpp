// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/ControlCommands.h"

#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qel::tools {

namespace {

/// Remembers what it is asked for.
class Setter : public IValueSetter {
public:
    std::vector<std::string> set(Assignment const& assignment, std::uint64_t due) override {
        number = assignment.number;
        moment = due;
        return names;
    }
    std::vector<std::string> unset(inspect::ValuePattern const& /*pattern*/, std::uint64_t due) override {
        moment = due;
        return names;
    }

    std::vector<std::string> names{"x"};
    double number = 0.0;
    std::uint64_t moment = 0;
};

class ControlCommandsTest : public testing::Test {
protected:
    Setter setter_;
    ControlCommands sut_{setter_, [] {
                             return std::uint64_t{1234};
                         }};
};

} // namespace

TEST_F(ControlCommandsTest, Set_IsPassedOnWithTheMoment) {
    EXPECT_EQ("set x; until it is unset or the replay ends",
              sut_.answer("set unit1/inlet1:voltage=12.5,lost"));
    EXPECT_EQ(12.5, setter_.number);
    EXPECT_EQ(1234U, setter_.moment);
    setter_.names = {"x", "y", "z"};
    EXPECT_EQ("set 3 values; until it is unset or the replay ends", sut_.answer("set unit1/**:voltage=1"));
}

TEST_F(ControlCommandsTest, Unset_IsPassedOnWithTheMoment) {
    EXPECT_EQ("unset x; the recording goes on", sut_.answer("unset unit1/inlet1"));
    EXPECT_EQ(1234U, setter_.moment);
}

TEST_F(ControlCommandsTest, NothingDone_IsAnError) {
    setter_.names.clear();
    EXPECT_EQ("error: set: the unit has no value \"unit1:voltage\" now; expected a name of \"qelshm list\", "
              "such as unit1/inlet1:active-power",
              sut_.answer("set unit1:voltage=1"));
    EXPECT_EQ("error: unset: nothing is set by hand for \"unit1\"; expected the name of a value that was set",
              sut_.answer("unset unit1"));
}

TEST_F(ControlCommandsTest, AnyOtherLine_IsAnErrorWithoutControlCharacters) {
    std::string const rest = R"(: unknown command; expected "set NAME=VALUE[,STATE]" or "unset NAME")";
    EXPECT_EQ("error: \"\"" + rest, sut_.answer(""));
    EXPECT_EQ("error: \"\\x1b[31m\"" + rest, sut_.answer("\x1B[31m"));
    EXPECT_EQ("error: \"set\"" + rest, sut_.answer("set"));
    EXPECT_EQ(0U, sut_.answer("set x=1").find("error: set: \"x\" is not the name of a point"));
}

TEST(CheckCommandTest, WrongCommand_IsRefused) {
    EXPECT_EQ("no InputError", test::inputFailure([] { checkCommand("set unit1:voltage=1"); }));
    EXPECT_EQ(0U, test::inputFailure([] {
                      checkCommand("set unit1:voltage=x");
                  }).find("set: \"x\" is not a number"));
}

} // namespace qel::tools
