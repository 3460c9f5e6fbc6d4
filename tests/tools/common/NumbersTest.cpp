// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Numbers.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gtest/gtest.h>

#include <string>

namespace qel::tools {

namespace {

TEST(NumbersTest, ParseNumber_ReadsDecimalNumbers) {
    EXPECT_EQ(12.5, parseNumber("12.5"));
    EXPECT_EQ(-3.0, parseNumber("-3"));
    EXPECT_EQ(1000.0, parseNumber("1e3"));
    EXPECT_EQ(2.0, parseNumber(std::string_view("27").substr(0, 1))) << "it ends with the text";
}

TEST(NumbersTest, ParseNumber_RefusesEverythingElse) {
    for (auto const* const text :
         {"", " 1", "1 ", "+1", "1,5", "0x10", "5s", "nan", "inf", "-inf", "1e999"}) {
        EXPECT_EQ(std::nullopt, parseNumber(text)) << text;
    }
}

TEST(NumbersTest, ParseDigits_ReadsDigitsOnly) {
    EXPECT_EQ(0U, parseDigits("0"));
    EXPECT_EQ(18446744073709551615U, parseDigits("18446744073709551615"));
    for (auto const* const text : {"", "-1", "+1", "1.0", "1e3", "0x10", "18446744073709551616"}) {
        EXPECT_EQ(std::nullopt, parseDigits(text)) << text;
    }
}

TEST(NumbersTest, FiniteBetween_AcceptsTheRangeWithItsBounds) {
    auto const sut = finiteBetween(0.01, 3600);
    for (auto const* const text : {"0.01", "1", "1e2", "3600", "3600.0"}) {
        EXPECT_EQ("", sut(text)) << text;
    }
}

TEST(NumbersTest, FiniteBetween_NamesTheRangeToOtherNumbersAndTexts) {
    auto const sut = finiteBetween(0.001, 1e9);
    for (auto const* const text : {"0.0009", "-1", "1000000001", "1e400", "", "five", "5s", "1,5"}) {
        EXPECT_EQ('"' + std::string(text) + "\" is not a number from 0.001 to 1000000000", sut(text));
    }
}

TEST(NumbersTest, FiniteBetween_RefusesNanAndInfinity) {
    auto const sut = finiteBetween(0, 1e9);
    for (auto const* const text : {"nan", "NAN", "-nan", "nan(1)", "inf", "-inf", "infinity", "1e309"}) {
        EXPECT_NE("", sut(text)) << text;
    }
}

TEST(NumbersTest, FiniteBetween_ChecksAnOptionWithoutWordsInTheHelp) {
    CLI::App app;
    double number = 0;
    app.add_option("--age", number, "Age")->check(finiteBetween(0, 10))->type_name("SECONDS");
    EXPECT_EQ(std::string::npos, app.help().find("finite"));
    EXPECT_THROW(app.parse("--age nan", false), CLI::ValidationError);
    app.parse("--age 7.5", false);
    EXPECT_EQ(7.5, number);
}

} // namespace

} // namespace qel::tools
