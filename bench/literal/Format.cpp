// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/literal/Format.h"

#include <array>
#include <cstdio>
#include <map>
#include <sstream>

namespace bench::literal {

namespace {

struct KeyFormat {
    char const* number;
    int unit; // -1 for none
};

std::map<unsigned short, KeyFormat> const keyFormats{
    {0, {"%.1f", -1}},   {1, {"%.1f", 38}},   {2, {"%.1f", 38}},   {4, {"%.2f", 4}},    {5, {"%.2f", 4}},
    {7, {"%.1f", 246}},  {8, {"%.1f", 246}},  {9, {"%.2f", 4}},    {16, {"%.0f", 65}},  {17, {"%.3f", -1}},
    {18, {"%.1f", 242}}, {19, {"%.1f", 36}},  {20, {"%.1f", 36}},  {22, {"%.1f", 243}}, {23, {"%.2f", 32}},
    {24, {"%.2f", 4}},   {32, {"%.1f", 244}}, {33, {"%.1f", 244}}, {34, {"%.1f", 245}}, {35, {"%.1f", 245}},
    {36, {"%.1f", 240}}, {37, {"%.1f", 240}}, {38, {"%.1f", 240}}, {59, {"%.1f", -1}},  {72, {"%.1f", -1}},
    {80, {"%.1f", 38}},  {81, {"%.1f", 38}},  {82, {"%.1f", 38}},  {256, {"%.1f", 45}}, {257, {"%.1f", 241}},
    {266, {"%.1f", 45}}};

std::map<int, std::string> const unitNames{
    {4, "A"},   {32, "Hz"},  {36, "W"},    {38, "V"},     {45, "Cel"},    {65, "deg"}, {240, "kWh"},
    {241, "%"}, {242, "VA"}, {243, "VAR"}, {244, "kVAh"}, {245, "kVARh"}, {246, "mA"}};

std::string unitText(int unit) {
    auto const found = unitNames.find(unit);
    std::string const name = found == unitNames.end() ? "UNKNOWN UNIT" : found->second;
    if (name == "Cel") {
        return "\u00B0C";
    }
    if (name == "deg") {
        return "\u00B0";
    }
    return name == "%" ? "%%" : name;
}

std::string format(unsigned short key, std::string const& separator) {
    std::ostringstream text;
    auto const found = keyFormats.find(key);
    if (found == keyFormats.end()) {
        text << "%.1f";
    } else {
        text << found->second.number;
        if (found->second.unit >= 0) {
            text << separator << unitText(found->second.unit);
        }
    }
    return text.str();
}

} // namespace

std::string str(unsigned short key, double value, std::string const& separator) {
    std::array<char, 32> text{};
    // NOLINTNEXTLINE(clang-diagnostic-format-nonliteral): the format comes from the table above.
    static_cast<void>(std::snprintf(text.data(), text.size(), format(key, separator).c_str(), value));
    return text.data();
}

} // namespace bench::literal
