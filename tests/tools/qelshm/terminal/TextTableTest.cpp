// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/TextTable.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace qel::tools {

namespace {

std::string printed(TextTable const& table, bool isColoured = false) {
    std::ostringstream out;
    table.print(out, isColoured);
    return out.str();
}

} // namespace

TEST(TextTableTest, NoRows_PrintNothing) {
    EXPECT_EQ("", printed(TextTable()));
}

TEST(TextTableTest, Columns_AreAsWideAsTheirLongestText) {
    TextTable sut;
    sut.add(0, {"a", "bb", "c"});
    sut.add(0, {"aaa", "b", "ccc"});
    EXPECT_EQ("a    bb  c\naaa  b   ccc\n", printed(sut));
}

TEST(TextTableTest, Width_CountsCharactersNotBytes) {
    TextTable sut;
    sut.add(0, {"\u00B0C", "x"});
    sut.add(0, {"abc", "y"});
    EXPECT_EQ("\u00B0C   x\nabc  y\n", printed(sut));
}

TEST(TextTableTest, Layouts_HaveColumnsOfTheirOwn) {
    TextTable sut;
    sut.add(0, {"a", "b"});
    sut.add(1, {"a long one", "b"});
    EXPECT_EQ("a  b\na long one  b\n", printed(sut));
}

TEST(TextTableTest, EmptyCellsAtTheEnd_LeaveNoBlanks) {
    TextTable sut;
    sut.add(0, {"a", "", ""});
    sut.add(0, {"a", "b", "c"});
    sut.add(0, {});
    EXPECT_EQ("a\na  b  c\n\n", printed(sut));
}

TEST(TextTableTest, Color_DoesNotCountForTheWidth) {
    TextTable sut;
    sut.add(0, {{"On", Style::Good}, "x"});
    sut.add(0, {{"Alarm", Style::Alarm}, "y"});
    EXPECT_EQ("\x1b[32mOn\x1b[0m     x\n\x1b[31mAlarm\x1b[0m  y\n", printed(sut, true));
    EXPECT_EQ("On     x\nAlarm  y\n", printed(sut, false));
}

TEST(TextTableTest, TextThatCouldHarmATerminal_IsEscaped) {
    TextTable sut;
    sut.add(0, {"\x1b[2J", "x"});
    EXPECT_EQ("\\x1B[2J  x\n", printed(sut, true));
}

} // namespace qel::tools
