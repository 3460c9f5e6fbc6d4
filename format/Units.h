// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The table of the unit codes, and their texts.
#pragma once

#include "region/TableLookup.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tav {

/// The codes of the units that value keys have.
namespace unit {
inline constexpr std::uint8_t ampere = 4;
inline constexpr std::uint8_t hertz = 32;
inline constexpr std::uint8_t watt = 36;
inline constexpr std::uint8_t volt = 38;
inline constexpr std::uint8_t celsius = 45;
inline constexpr std::uint8_t degree = 65;
inline constexpr std::uint8_t kilowattHour = 240;
inline constexpr std::uint8_t percent = 241;
inline constexpr std::uint8_t voltAmpere = 242;
inline constexpr std::uint8_t var = 243;
inline constexpr std::uint8_t kilovoltAmpereHour = 244;
inline constexpr std::uint8_t kilovarHour = 245;
inline constexpr std::uint8_t milliampere = 246;
} // namespace unit

/// What stands for a code that is no unit.
inline constexpr std::string_view unknownUnit = "UNKNOWN UNIT";

/// All units, in ascending order of their codes.
// Deliberate: "min" and "pc" stand twice and "w/m" has a small w; receivers know the units by these texts.
inline constexpr std::array<shm::TextRow<std::uint8_t>, 63> unitTable{{
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
static_assert(shm::isSortedByCode(unitTable));

/// Name of a unit ("Cel", "deg"), "UNKNOWN UNIT" for a code that is none.
///
/// Threads: reentrant.
constexpr std::string_view unitName(std::uint8_t code) {
    return shm::textOf(unitTable, code, unknownUnit);
}

/// The unit as people read it: its name, but "°C" for "Cel" and "°" for "deg".
///
/// Threads: reentrant.
constexpr std::string_view unitSymbol(std::uint8_t code) {
    if (code == unit::celsius) {
        return "\u00B0C";
    }
    return code == unit::degree ? "\u00B0" : unitName(code);
}

/// The unit as it stands in a printf format: its symbol, but "%%" for "%"; a code that is none gives "UNIT_" and the
/// code as one raw character.
///
/// Threads: reentrant.
std::string unitText(std::uint8_t code);

} // namespace tav
