// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The texts for the unit's display.

#include "format/ValueFormatter.h"

#include "format/ValueKeys.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

namespace {

namespace key = shm::key;
using tav::ValueFormatter;

std::string display(int key, double value, int state = 0) {
    return ValueFormatter::strForDisplay(static_cast<unsigned short>(key), value,
                                         static_cast<eStatus_Bits>(state));
}

TEST(ValueFormatterDisplayTest, ShowsMissingAndExpectedValues) {
    for (int const key : {key::guid, key::voltage, key::powerFactor, key::temperature, key::humidity,
                          key::input3, key::dewPoint, key::voltageMeasuredAtSocketLevel}) {
        EXPECT_EQ(display(key, 1, -1), "--") << key;
        EXPECT_EQ(display(key, 1, -2), "n/a") << key;
    }
}

TEST(ValueFormatterDisplayTest, WithoutAKey_ShowsAMissingValueWhateverTheState) {
    for (int const state : {-3, -2, -1, 0, 17, 44}) {
        EXPECT_EQ(display(65535, 1, state), "--") << state;
    }
}

TEST(ValueFormatterDisplayTest, OfInputsAndOutputs_ShowsTheStateOnly) {
    std::map<int, std::string> const texts{{-1, "--"},  {-2, "n/a"}, {0, "S0"},  {17, "On"},
                                           {18, "Off"}, {37, "Hi"},  {38, "Lo"}, {42, "--"}};
    for (int key = key::input1; key <= key::output4; ++key) {
        for (int state = -1000; state <= 1000; ++state) {
            auto const text = texts.find(state);
            ASSERT_EQ(display(key, 1.0, state), text != texts.end() ? text->second : "?")
                << key << ", " << state;
        }
        EXPECT_EQ(display(key, std::numeric_limits<double>::quiet_NaN(), 17), "On");
    }
}

TEST(ValueFormatterDisplayTest, BesideInputsAndOutputs_ShowsTheValue) {
    EXPECT_EQ(display(key::humidity, 1.0, 17), "|1.0|%");
    EXPECT_EQ(display(key::dewPoint, 1.0, 17), "1.0|\u00B0C");
}

TEST(ValueFormatterDisplayTest, OfATemperature_MarksTheDegreeSignsFirstByte) {
    EXPECT_EQ(display(key::temperature, 23.46), "|23.5|^\xB0"
                                                "C");
    EXPECT_EQ(display(key::temperature, -5), "|-5.0|^\xB0"
                                             "C");
}

TEST(ValueFormatterDisplayTest, OfHumidity_StartsWithTheSeparator) {
    EXPECT_EQ(display(key::humidity, 45), "|45.0|%");
}

TEST(ValueFormatterDisplayTest, OfADewPoint_IsLikeAnyOtherValue) {
    EXPECT_EQ(display(key::dewPoint, 5.0), "5.0|\u00B0C");
}

TEST(ValueFormatterDisplayTest, OfAPhaseAngle_KeepsTheDegreeSign) {
    EXPECT_EQ(display(key::phaseAngle, 90), "90|\u00B0");
}

TEST(ValueFormatterDisplayTest, OfAPowerFactor_EndsWithTheSeparator) {
    EXPECT_EQ(display(key::powerFactor, 0.95), "0.950|");
}

TEST(ValueFormatterDisplayTest, JoinsNumberAndUnitWithTheSeparator) {
    EXPECT_EQ(display(key::voltage, 230.1), "230.1|V");
    EXPECT_EQ(display(key::activeEnergy, 12.5), "12.5|kWh");
}

TEST(ValueFormatterDisplayTest, WithoutAUnit_ShowsTheBareNumber) {
    EXPECT_EQ(display(3, 7), "7.0");
    EXPECT_EQ(display(key::state, 17), "17.0");
}

TEST(ValueFormatterDisplayTest, OfEveryOtherKey_IsTheFormattedValue) {
    for (int key = 0; key <= 65534; ++key) {
        if ((key >= key::temperature && key <= key::output4) || key == key::powerFactor) {
            continue;
        }
        ASSERT_EQ(display(key, 12.345), ValueFormatter::str(static_cast<unsigned short>(key), 12.345, "|"))
            << key;
    }
}

TEST(ValueFormatterDisplayTest, OfEveryStateWithAValue_IsTheSame) {
    for (int state = 0; state <= 43; ++state) {
        EXPECT_EQ(display(key::voltage, 230.1, state), "230.1|V") << state;
    }
    EXPECT_EQ(display(key::voltage, 230.1, -3), "230.1|V");
}

TEST(ValueFormatterDisplayTest, OfAHugeTemperature_IsCutBeforeTheUnit) {
    EXPECT_EQ(display(key::temperature, 1e308), "|1000000000000000010979063629440");
}

TEST(ValueFormatterDisplayTest, OfATemperatureCutWithinTheDegreeSign_MarksNothing) {
    EXPECT_EQ(display(key::temperature, 1e26), "|100000000000000004764729344.0|\xC2");
}

} // namespace
