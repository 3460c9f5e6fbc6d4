// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/InputError.h"

#include <gtest/gtest.h>

namespace qel::tools {

TEST(InputErrorTest, Message_NamesFileLineColumnProblemAndExpectation) {
    InputError const sut({"a.csv", 12, "inlet1_voltage_V"}, "\"x\" is no number", "a decimal number");

    EXPECT_STREQ("a.csv:12: inlet1_voltage_V: \"x\" is no number; expected a decimal number", sut.what());
}

TEST(InputErrorTest, Message_LeavesOutLineAndColumnThatThereAreNot) {
    EXPECT_STREQ("a.csv: is empty; expected rows", InputError({"a.csv"}, "is empty", "rows").what());
    EXPECT_STREQ("a.csv:3: is short; expected 2 cells",
                 InputError({"a.csv", 3}, "is short", "2 cells").what());
}

TEST(InQuotesTest, PrintableText_StaysAsItIs) {
    EXPECT_EQ("\"\"", inQuotes(""));
    EXPECT_EQ("\"a b~\"", inQuotes("a b~"));
}

TEST(InQuotesTest, OtherBytes_AreWrittenInHexadecimal) {
    EXPECT_EQ("\"\\x0a\\x1f\\x7f\\xc2\\xb0\"", inQuotes("\n\x1f\x7f\xc2\xb0"));
}

TEST(InQuotesTest, LongText_IsCutAfter40Bytes) {
    EXPECT_EQ('"' + std::string(40, 'a') + '"', inQuotes(std::string(40, 'a')));
    EXPECT_EQ('"' + std::string(40, 'a') + "...\"", inQuotes(std::string(41, 'a')));
}

} // namespace qel::tools
