// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WaitCondition.h"

#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

std::string problemOf(std::string const& text) {
    try {
        WaitCondition const condition(text);
    } catch (std::invalid_argument const& error) {
        return error.what();
    }
    return "(none)";
}

/// A unit with an alarm of the active power of socket 2.
class WaitConditionTest : public testing::Test {
protected:
    /// Path, or path and name, of what meets a condition; "" for nothing.
    std::string metBy(std::string const& text) const {
        auto const met = WaitCondition(text).metBy(image_, tree_);
        if (!met) {
            return {};
        }
        return met->point.path + (met->value ? ' ' + met->value->name : "");
    }

    inspect::Image const image_ = test::sampleImage("alarm");
    inspect::PointTree const tree_{image_};
};

} // namespace

TEST_F(WaitConditionTest, StateOfAPoint_IsComparedByClassNameOrNumber) {
    for (auto const* const text :
         {"unit1:state=alarm", "unit1:State==Child Alarm", "unit1:state=child-alarm", "unit1:state=23",
          "0x0100FFFFFFFF0000:state=alarm", "unit1:state!=on", "unit1:state!=warning"}) {
        EXPECT_EQ("unit1", metBy(text)) << text;
    }
    for (auto const* const text : {"unit1:state=on", "unit1:state!=alarm", "unit1:state=high-alarm",
                                   "unit1/sensor1.1:state=alarm", "unit7:state!=on"}) {
        EXPECT_EQ("", metBy(text)) << text;
    }
}

TEST_F(WaitConditionTest, Wildcards_MeanAny) {
    EXPECT_EQ("unit1", metBy("unit1/**:state=alarm"));
    EXPECT_EQ("unit1/inlet1/circuit1/socket2", metBy("**/socket[!1]:state=alarm"));
    EXPECT_EQ("", metBy("**/socket1:state=alarm"));
    EXPECT_EQ("unit1/inlet1 Active Power", metBy("unit1/**:active-power>1234"));
}

TEST_F(WaitConditionTest, NumbersOfValues_AreCompared) {
    std::string const name = "unit1/inlet1:active-power"; // 1234.5 W
    for (auto const* const comparison :
         {">1234", ">=1234.5", "=1234.5", "!=0", "<1e9", "<=1234.5", "==1234.5"}) {
        EXPECT_EQ("unit1/inlet1 Active Power", metBy(name + comparison)) << comparison;
    }
    for (auto const* const comparison : {">1234.5", "<1234.5", "=1234", "!=1234.5", "<-1"}) {
        EXPECT_EQ("", metBy(name + comparison)) << comparison;
    }
    EXPECT_EQ("unit1/inlet1 Active Energy", metBy("unit1/inlet1:active-energy<4.6")) << "in kWh";
}

TEST_F(WaitConditionTest, ValueWithoutANumber_MeetsNoComparison) {
    for (auto const* const comparison : {"!=0", "=0", ">-1"}) {
        EXPECT_EQ("", metBy(std::string("unit1/inlet1/circuit1/socket3:voltage") + comparison));
    }
}

TEST_F(WaitConditionTest, StatesOfValues_AreCompared) {
    EXPECT_EQ("unit1/inlet1/circuit1/socket2 Active Power", metBy("**:*=alarm"));
    EXPECT_EQ("unit1/inlet1/circuit1/socket2 Active Power", metBy("0x010001FF01020013=high-alarm"));
    EXPECT_EQ("", metBy("**:voltage=alarm"));
    EXPECT_EQ("unit1/inlet1/circuit1/socket3 Voltage", metBy("**:voltage!=no-error"));
}

TEST_F(WaitConditionTest, RegionAsAWhole_IsTheCallersBusiness) {
    EXPECT_EQ(WaitCondition::Kind::Active, WaitCondition("active").kind());
    EXPECT_EQ(WaitCondition::Kind::Structure, WaitCondition("structure").kind());
    EXPECT_EQ("", metBy("active"));
}

TEST(WaitConditionTextTest, OtherTexts_AreRefusedWithAdvice) {
    EXPECT_EQ("\"unit1\" is no condition; conditions are like unit1:state=alarm, "
              "unit1/inlet1:active-power>100, active, structure",
              problemOf("unit1"));
    EXPECT_EQ("\"unit1\" names no value; write unit1:state, or unit1:voltage for example",
              problemOf("unit1=alarm"));
    EXPECT_EQ("\"burning\" is no state; states are like alarm, warning, on, high-alarm, lost",
              problemOf("unit1:state=burning"));
    EXPECT_EQ("\"nan\" is no state and no number; states are like alarm, warning, on, high-alarm, lost",
              problemOf("unit1:voltage>nan"));
    EXPECT_EQ("states have no order: compare \"alarm\" by = or !=", problemOf("unit1:state>alarm"));
    EXPECT_EQ("\"=>\" is no comparison; there are = != < <= > >=", problemOf("unit1:voltage=>1"));
    EXPECT_NE("(none)", problemOf("unit1:volts>1"));
    EXPECT_NE("(none)", problemOf("unti1:state=on"));
    EXPECT_NE("(none)", problemOf("=1"));
    EXPECT_NE("(none)", problemOf("unit1:voltage="));
    EXPECT_NE("(none)", problemOf(""));
}

} // namespace qel::tools
