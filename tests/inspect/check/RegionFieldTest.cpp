// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionField.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel::inspect {

TEST(RegionFieldTest, Offset_IsThatOfTheLayout) {
    EXPECT_EQ(0U, regionOffset(field::size, 0));
    EXPECT_EQ(320000U, regionOffset(field::rootGuid, 0));
    EXPECT_EQ(320020U, regionOffset(field::groups, 7)); // the root has one slot
    EXPECT_EQ(799U * 48 + 20, regionOffset(field::parent, 799));
    EXPECT_EQ(38400U + 8799 * 32 + 26, regionOffset(field::valueReserved, 8799));
}

TEST(RegionFieldTest, FieldsOfDifferentRecordsDiffer) {
    EXPECT_TRUE(field::next == field::next);
    EXPECT_FALSE(field::next == field::prev);
    EXPECT_FALSE(field::rootGuid == field::pos); // both at 0
}

TEST(FieldValueTest, Text_IsThatOfTheField) {
    EXPECT_EQ("slot 17", FieldValue::position(17).text());
    EXPECT_EQ("none", FieldValue::position(0xFFFFFFFF).text());
    EXPECT_EQ("slot 4294967294", FieldValue::position(0xFFFFFFFE).text());
    EXPECT_EQ("0xff00ffffffff0000", FieldValue::svid(static_cast<std::int64_t>(0xFF00FFFFFFFF0000)).text());
    EXPECT_EQ("Expected Value (-2)", FieldValue::state(eStatus_ExpectedValue).text());
    EXPECT_EQ("UNKNOWN STATE (2147483647)", FieldValue::state(static_cast<eStatus_Bits>(0x7FFFFFFF)).text());
    EXPECT_EQ("0x0a", FieldValue::byte(10).text());
    EXPECT_EQ("0x0013", FieldValue::key(0x13).text());
    EXPECT_EQ("0xffff", FieldValue::key(0xFFFF).text());
    EXPECT_EQ("18446744073709551615", FieldValue::count(std::numeric_limits<std::uint64_t>::max()).text());
    EXPECT_EQ("4294967295", FieldValue::count(0xFFFFFFFF).text());
    EXPECT_EQ("a finite number", FieldValue::words("a finite number").text());
    EXPECT_EQ("root (0)", FieldValue::user(0).text());
    EXPECT_EQ("3999999999", FieldValue::user(3999999999).text());
    EXPECT_EQ("rw-r--rw-", FieldValue::mode(0646).text());
}

TEST(FieldValueTest, Text_OfAnyDoubleFits) {
    EXPECT_EQ("230.1", FieldValue::number(230.1).text());
    EXPECT_EQ("-2.2250738585072014e-308", FieldValue::number(-std::numeric_limits<double>::min()).text());
    EXPECT_EQ("1.7976931348623157e+308", FieldValue::number(std::numeric_limits<double>::max()).text());
    EXPECT_EQ("nan", FieldValue::number(std::numeric_limits<double>::quiet_NaN()).text());
    EXPECT_EQ("-inf", FieldValue::number(-std::numeric_limits<double>::infinity()).text());
}

TEST(FieldValueTest, Number_IsNothingForWordsOnly) {
    using Number = FieldValue::Number;
    EXPECT_EQ(Number(std::uint64_t{0xFFFFFFFF}), FieldValue::position(0xFFFFFFFF).number());
    EXPECT_EQ(Number(std::int64_t{-2}), FieldValue::state(eStatus_ExpectedValue).number());
    EXPECT_EQ(Number(std::int64_t{-5}), FieldValue::svid(-5).number());
    EXPECT_EQ(Number(std::uint64_t{255}), FieldValue::byte(255).number());
    EXPECT_EQ(Number(std::uint64_t{19}), FieldValue::key(19).number());
    EXPECT_EQ(Number(2.5), FieldValue::number(2.5).number());
    EXPECT_EQ(Number(), FieldValue::words("none").number());
    EXPECT_EQ(Number(std::uint64_t{3999999999}), FieldValue::user(3999999999).number());
    EXPECT_EQ(Number(std::uint64_t{0646}), FieldValue::mode(0646).number());
}

} // namespace qel::inspect
