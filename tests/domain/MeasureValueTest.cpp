// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/MeasureValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace {

using measval::MeasureValue;

TEST(MeasureValueTest, TypesAreNumbered) {
    EXPECT_EQ(measval::Undefined, 0);
    EXPECT_EQ(measval::Bool, 1);
    EXPECT_EQ(measval::Integer, 2);
    EXPECT_EQ(measval::Double, 3);
    EXPECT_EQ(measval::String, 4);
}

TEST(MeasureValueTest, MvtToStr_GivesTheName) {
    EXPECT_EQ(measval::mvtToStr(measval::Undefined), "Undefined");
    EXPECT_EQ(measval::mvtToStr(measval::Bool), "Bool");
    EXPECT_EQ(measval::mvtToStr(measval::Integer), "Integer");
    EXPECT_EQ(measval::mvtToStr(measval::Double), "Double");
    EXPECT_EQ(measval::mvtToStr(measval::String), "String");
    EXPECT_EQ(measval::mvtToStr(static_cast<measval::MeasureValueType>(5)), "Unknown");
    EXPECT_EQ(measval::mvtToStr(static_cast<measval::MeasureValueType>(255)), "Unknown");
}

TEST(MeasureValueTest, CarriesTimeAndStateUnchanged) {
    constexpr auto latest = std::numeric_limits<std::uint64_t>::max();
    MeasureValue const sut(1.5, latest, static_cast<eStatus_Bits>(-77));
    EXPECT_EQ(sut.timestamp(), latest);
    EXPECT_EQ(sut.state(), -77);
}

TEST(MeasureValueTest, Type_IsThatOfTheGivenValue) {
    EXPECT_EQ(MeasureValue(1.5, 1, eStatus_NoError).type(), measval::Double);
    EXPECT_EQ(MeasureValue(15LL, 1, eStatus_NoError).type(), measval::Integer);
    EXPECT_EQ(MeasureValue(true, 1, eStatus_NoError).type(), measval::Bool);
    EXPECT_EQ(MeasureValue(std::string("x"), 1, eStatus_NoError).type(), measval::String);
    EXPECT_EQ(MeasureValue("x", 1, eStatus_NoError).type(), measval::String);
}

void expectNumber(MeasureValue const& sut, double number) {
    auto const result = sut.toDouble();
    EXPECT_EQ(result.type, measval::Double);
    EXPECT_EQ(result.value, number);
}

TEST(MeasureValueTest, ToDouble_NumbersConvert) {
    expectNumber(MeasureValue(-230.125, 1, eStatus_NoError), -230.125);
    expectNumber(MeasureValue(0LL, 1, eStatus_NoError), 0.0);
    expectNumber(MeasureValue(-42LL, 1, eStatus_NoError), -42.0);
    expectNumber(MeasureValue(std::numeric_limits<long long>::max(), 1, eStatus_NoError),
                 9223372036854775808.0);
    expectNumber(MeasureValue(true, 1, eStatus_NoError), 1.0);
    expectNumber(MeasureValue(false, 1, eStatus_NoError), 0.0);
}

TEST(MeasureValueTest, ToDouble_NoNumberAndInfinityStayWhatTheyAre) {
    auto const result = MeasureValue(std::nan(""), 1, eStatus_NoError).toDouble();
    EXPECT_EQ(result.type, measval::Double);
    EXPECT_TRUE(std::isnan(result.value));
    expectNumber(MeasureValue(-std::numeric_limits<double>::infinity(), 1, eStatus_NoError),
                 -std::numeric_limits<double>::infinity());
}

TEST(MeasureValueTest, ToDouble_TextDoesNotConvert) {
    auto const result = MeasureValue(std::string("230.1"), 1, eStatus_NoError).toDouble();
    EXPECT_EQ(result.type, measval::String);
    EXPECT_EQ(result.value, 0.0);
}

} // namespace
