// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PointLines.h"

#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace qel::tools {

namespace {

constexpr std::uint64_t now = test::sampleTime + 5000;

std::string printed(TextTable const& table, bool hasColor) {
    std::ostringstream out;
    table.print(out, hasColor);
    return out.str();
}

PointFacts const point{test::sample::socket1,
                       "unit1/inlet1/circuit1/socket1",
                       "unit1/inlet1/circuit1",
                       "socket",
                       30,
                       "Schuko",
                       3,
                       4,
                       eStatus_OnWarning,
                       test::sampleTime};
ValueFacts const value{test::sample::socket1 | 1, 1, "Voltage", "230.1 V", 230.1, "V", eStatus_LowWarning,
                       test::sampleTime};

} // namespace

TEST(PointLinesTest, PointLine_HasIdPathTypeAndState) {
    TextTable table;
    addPointLine(table, point);
    EXPECT_EQ("0x010001ff01010000  unit1/inlet1/circuit1/socket1  Schuko  On, Warning\n",
              printed(table, false));
    EXPECT_EQ("0x010001ff01010000  unit1/inlet1/circuit1/socket1  Schuko  \x1b[33mOn, Warning\x1b[0m\n",
              printed(table, true));
}

TEST(PointLinesTest, ValueLine_HasIdNameNumberStateTimeAndAge) {
    TextTable table;
    addValueLine(table, value, now);
    EXPECT_EQ("  0x010001ff01010001  Voltage  230.1 V  Low Warning  2023-11-14T22:13:20Z  5.0 s\n",
              printed(table, false));
}

TEST(PointLinesTest, PointLines_ArePointAndValues) {
    TextTable table;
    addPointLines(table, point, {value, value}, now);
    auto const text = printed(table, false);
    EXPECT_EQ(3, std::count(text.begin(), text.end(), '\n'));
    EXPECT_EQ(0U, text.find("0x010001ff01010000  unit1"));
}

} // namespace qel::tools
