// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Units.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

using tav::unitName;
using tav::unitSymbol;
using tav::unitText;

std::map<int, std::string> const& names() {
    static std::map<int, std::string> const table{
        {4, "A"},     {5, "K"},   {6, "mol"},   {7, "cd"},    {16, "rad"},   {17, "rad2"},     {32, "Hz"},
        {33, "N"},    {34, "Pa"}, {35, "J"},    {36, "W"},    {37, "C"},     {38, "V"},        {39, "F"},
        {40, "Ohm"},  {41, "S"},  {42, "Wb"},   {43, "T"},    {44, "H"},     {45, "Cel"},      {46, "lm"},
        {47, "lx"},   {48, "Bq"}, {49, "Gr"},   {50, "Sv"},   {51, "kat"},   {64, "gon"},      {65, "deg"},
        {66, "min"},  {67, "s"},  {68, "l"},    {69, "are"},  {70, "ha"},    {71, "min"},      {72, "h"},
        {73, "d"},    {74, "y"},  {75, "g"},    {78, "bar"},  {79, "P"},     {80, "St"},       {81, "eV"},
        {82, "AMU"},  {83, "AU"}, {84, "pc"},   {85, "m/s2"}, {86, "Nm"},    {87, "pc"},       {88, "m2"},
        {89, "m3"},   {90, "Ps"}, {91, "J/kg"}, {92, "w/m"},  {93, "W/m2"},  {94, "W/m2rad2"}, {95, "kat/m3"},
        {240, "kWh"}, {241, "%"}, {242, "VA"},  {243, "VAR"}, {244, "kVAh"}, {245, "kVARh"},   {246, "mA"},
    };
    return table;
}

TEST(UnitsTest, UnitName_OfEveryCode) {
    for (int code = 0; code <= 255; ++code) {
        auto const name = names().find(code);
        EXPECT_EQ(unitName(static_cast<std::uint8_t>(code)),
                  name != names().end() ? name->second : "UNKNOWN UNIT")
            << code;
    }
}

TEST(UnitsTest, UnitName_KeepsDuplicatesAndSpelling) {
    EXPECT_EQ(unitName(66), "min");
    EXPECT_EQ(unitName(71), "min");
    EXPECT_EQ(unitName(84), "pc");
    EXPECT_EQ(unitName(87), "pc");
    EXPECT_EQ(unitName(92), "w/m");
}

TEST(UnitsTest, UnitSymbol_IsTheNameButForTheDegrees) {
    for (int code = 0; code <= 255; ++code) {
        auto const number = static_cast<std::uint8_t>(code);
        auto const symbol = unitSymbol(number);
        EXPECT_EQ(symbol, code == 45 ? "\u00B0C" : code == 65 ? "\u00B0" : unitName(number)) << code;
    }
    static_assert(unitSymbol(tav::unit::percent) == "%");
}

TEST(UnitsTest, UnitText_OfEveryCode) {
    for (int code = 0; code <= 255; ++code) {
        std::string expected;
        if (code == 45) {
            expected = "\xC2\xB0"
                       "C";
        } else if (code == 65) {
            expected = "\xC2\xB0";
        } else if (code == 241) {
            expected = "%%";
        } else if (names().count(code) != 0) {
            expected = names().at(code);
        } else {
            expected = "UNIT_";
            expected.push_back(static_cast<char>(code));
        }
        EXPECT_EQ(unitText(static_cast<std::uint8_t>(code)), expected) << code;
    }
}

TEST(UnitsTest, UnitText_OfAnUnknownCode_EndsWithTheCodeAsOneRawCharacter) {
    EXPECT_EQ(unitText(52), "UNIT_4"); // the character '4' has the code 52
    EXPECT_EQ(unitText(0), std::string("UNIT_\0", 6));
    EXPECT_EQ(unitText(255), "UNIT_\xFF");
}

} // namespace
