// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Units.h"

#include "region/TableLookup.h"

#include <array>
#include <string_view>

namespace tav {

namespace {

constexpr std::string_view unknownUnit = "UNKNOWN UNIT";

// Deliberate: "min" and "pc" stand twice and "w/m" has a small w; receivers know the units by these texts.
constexpr std::array<shm::TextRow<std::uint8_t>, 63> unitNames{{
    {4, "A"},     {5, "K"},   {6, "mol"},   {7, "cd"},    {16, "rad"},   {17, "rad2"},     {32, "Hz"},
    {33, "N"},    {34, "Pa"}, {35, "J"},    {36, "W"},    {37, "C"},     {38, "V"},        {39, "F"},
    {40, "Ohm"},  {41, "S"},  {42, "Wb"},   {43, "T"},    {44, "H"},     {45, "Cel"},      {46, "lm"},
    {47, "lx"},   {48, "Bq"}, {49, "Gr"},   {50, "Sv"},   {51, "kat"},   {64, "gon"},      {65, "deg"},
    {66, "min"},  {67, "s"},  {68, "l"},    {69, "are"},  {70, "ha"},    {71, "min"},      {72, "h"},
    {73, "d"},    {74, "y"},  {75, "g"},    {78, "bar"},  {79, "P"},     {80, "St"},       {81, "eV"},
    {82, "AMU"},  {83, "AU"}, {84, "pc"},   {85, "m/s2"}, {86, "Nm"},    {87, "pc"},       {88, "m2"},
    {89, "m3"},   {90, "Ps"}, {91, "J/kg"}, {92, "w/m"},  {93, "W/m2"},  {94, "W/m2rad2"}, {95, "kat/m3"},
    {240, "kWh"}, {241, "%"}, {242, "VA"},  {243, "VAR"}, {244, "kVAh"}, {245, "kVARh"},   {246, "mA"},
}};
static_assert(shm::isSortedByCode(unitNames));

} // namespace

char const* unitName(std::uint8_t code) {
    return shm::textOf(unitNames, code, unknownUnit.data());
}

std::string unitText(std::uint8_t code) {
    std::string_view const name = unitName(code);
    if (name == "Cel") {
        return "\u00B0C";
    }
    if (name == "deg") {
        return "\u00B0";
    }
    if (name == "%") {
        return "%%";
    }
    if (name == unknownUnit) {
        // Deliberate: the code itself as one character, not its digits.
        return std::string("UNIT_") + static_cast<char>(code);
    }
    return std::string(name);
}

} // namespace tav
