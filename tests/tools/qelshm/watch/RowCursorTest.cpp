// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/RowCursor.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

namespace qel::watch {

namespace {

using test::inletId;
using test::unitId;

constexpr long long inletVoltage = inletId | test::voltage;

std::vector<Row> someRows() {
    return {{true, 0, 0, true, false, unitId},
            {true, 1, 1, true, false, inletId},
            {false, 0, 2, false, false, inletVoltage}};
}

} // namespace

TEST(RowCursorTest, NoRows_AllowEverything) {
    RowCursor sut;
    sut.setPage(3);
    sut.select(0);
    sut.select(7);
    EXPECT_FALSE(sut.select(true, unitId));
    sut.moveBy(1, true);
    sut.moveBy(1, false);
    sut.scrollBy(3, true);
    sut.scrollBy(3, false);
    EXPECT_EQ(nullptr, sut.row());
    EXPECT_EQ(0U, sut.index());
    EXPECT_EQ(0U, sut.top());
    EXPECT_EQ(0U, sut.end());
}

TEST(RowCursorTest, SelectionOutOfRange_IsIgnored) {
    RowCursor sut;
    sut.setPage(2);
    sut.show(someRows());
    sut.select(1);
    sut.select(3);
    EXPECT_EQ(1U, sut.index());
}

TEST(RowCursorTest, SelectedRow_ComesBackAfterAnEmptyList) {
    RowCursor sut;
    sut.show(someRows());
    sut.select(2);
    sut.show({});
    EXPECT_EQ(nullptr, sut.row());
    sut.setPage(5);
    sut.show(someRows());
    EXPECT_EQ(2U, sut.index());
}

TEST(RowCursorTest, HiddenValue_IsReplacedByItsPoint) {
    RowCursor sut;
    sut.show(someRows());
    sut.select(2);
    auto rows = someRows();
    rows.pop_back();
    sut.show(rows);
    EXPECT_EQ(inletId, sut.row()->svid);
}

TEST(RowCursorTest, Scroll_KeepsTheSelectionVisible) {
    RowCursor sut;
    sut.setPage(2);
    sut.show(someRows());
    sut.scrollBy(1, true);
    EXPECT_EQ(1U, sut.top());
    EXPECT_EQ(1U, sut.index());
    sut.scrollBy(9, true);
    EXPECT_EQ(1U, sut.top()) << "the last page is full";
    sut.select(2);
    sut.scrollBy(9, false);
    EXPECT_EQ(0U, sut.top());
    EXPECT_EQ(1U, sut.index());
}

} // namespace qel::watch
