// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/Assignment.h"

#include "format/StateName.h"
#include "format/ValueKeys.h"

#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr long long inlet = 0x010001FFFFFF0000;

std::string failureOf(std::string const& text) {
    return test::inputFailure([&] { parseAssignment(text, {"set"}); });
}

} // namespace

TEST(AssignmentTest, NameAndNumber_AreRead) {
    auto const sut = parseAssignment("unit1/inlet1:active-power=-4.5e3", {"set"});
    EXPECT_TRUE(sut.pattern.matches(inlet, key::activePower));
    EXPECT_FALSE(sut.pattern.matches(inlet, key::voltage));
    EXPECT_EQ(-4500.0, sut.number);
    EXPECT_EQ(eStatus_NoError, sut.state);
}

TEST(AssignmentTest, State_MayHaveCommasBlanksAndHyphens) {
    EXPECT_EQ(eStatus_Alarm, parseAssignment("unit1:voltage=1,alarm", {"set"}).state);
    EXPECT_EQ(eStatus_OnChildAlarm, parseAssignment("unit1:voltage=1,On, Child Alarm", {"set"}).state);
    EXPECT_EQ(eStatus_OnChildAlarm, parseAssignment("unit1:voltage=1,on-child-alarm", {"set"}).state);
}

TEST(AssignmentTest, StateOfEachName_IsThatState) {
    for (auto const& row : shm::stateTable) {
        auto const text = "unit1:voltage=1," + std::string(row.text);
        EXPECT_EQ(row.code, parseAssignment(text, {"set"}).state) << row.text;
    }
}

TEST(AssignmentTest, StateOfEachNumber_IsThatState) {
    for (auto const& row : shm::stateTable) {
        auto const text = "unit1:voltage=1," + std::to_string(static_cast<int>(row.code));
        EXPECT_EQ(row.code, parseAssignment(text, {"set"}).state) << row.text;
    }
}

TEST(AssignmentTest, WrongText_IsRefused) {
    std::string const grammar = "; expected NAME=VALUE[,STATE], such as unit1/inlet1:active-power=4000,alarm";
    std::string const number = "; expected a decimal number in the unit in which qelshm shows the value";
    EXPECT_EQ("set: \"\" sets nothing" + grammar, failureOf(""));
    EXPECT_EQ("set: \"unit1:voltage\" sets nothing" + grammar, failureOf("unit1:voltage"));
    EXPECT_EQ("set: \"\" is not a number" + number, failureOf("unit1:voltage="));
    EXPECT_EQ("set: \"1 V\" is not a number" + number, failureOf("unit1:voltage=1 V"));
    EXPECT_EQ("set: \"nan\" is not a number" + number, failureOf("unit1:voltage=nan"));
    EXPECT_EQ("set: \"inf\" is not a number" + number, failureOf("unit1:voltage=inf"));
    EXPECT_EQ("set: \"unit1\" names a point with all its values; expected the name of a value, such as "
              "unit1/inlet1:active-power",
              failureOf("unit1=1"));
    EXPECT_EQ(0U, failureOf("unit1:charm=1").find("set: \"charm\" is not the name of a value"));
    EXPECT_EQ(0U,
              failureOf("unit1:voltage=1,loud").find("set: \"loud\" is not a state; expected a state such"));
    EXPECT_EQ(0U, failureOf("unit1:voltage=1,alarms").find("set: \"alarms\" is not a state; "));
    EXPECT_EQ(0U, failureOf("unit1:voltage=1,4711").find("set: \"4711\" is not a state; "));
    EXPECT_EQ(0U, failureOf("unit1:voltage=1,").find("set: \"\" is not a state; "));
}

} // namespace qel::tools
