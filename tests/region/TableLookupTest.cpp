// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/TableLookup.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using Row = shm::TextRow<int>;

constexpr std::array<Row, 4> table{{{-2, "a"}, {0, "b"}, {7, "c"}, {8, "d"}}};

TEST(TableLookupTest, FindRow_FindsEveryRowAndNothingElse) {
    for (int code = -10; code <= 20; ++code) {
        Row const* expected = nullptr;
        for (auto const& row : table) {
            if (row.code == code) {
                expected = &row;
            }
        }
        EXPECT_EQ(shm::findRow(table, code), expected) << code;
    }
}

TEST(TableLookupTest, FindRow_EmptyTableHasNoRow) {
    EXPECT_EQ(shm::findRow(std::array<Row, 0>{}, 0), nullptr);
}

TEST(TableLookupTest, TextOf_GivesTheFallbackForACodeWithoutRow) {
    EXPECT_EQ(shm::textOf(table, 7, "none"), "c");
    EXPECT_EQ(shm::textOf(table, 6, "none"), "none");
}

TEST(TableLookupTest, IsSortedByCode_RefusesWrongOrderAndDuplicates) {
    static_assert(shm::isSortedByCode(table));
    static_assert(shm::isSortedByCode(std::array<Row, 1>{{{5, ""}}}));
    static_assert(!shm::isSortedByCode(std::array<Row, 2>{{{5, ""}, {5, ""}}}));
    EXPECT_FALSE(shm::isSortedByCode(std::array<Row, 3>{{{1, ""}, {3, ""}, {2, ""}}}));
}

TEST(TableLookupTest, CoversCodes_RefusesGapsAndOtherBounds) {
    constexpr std::array<Row, 3> dense{{{-1, ""}, {0, ""}, {1, ""}}};
    static_assert(shm::coversCodes(dense, -1, 1));
    static_assert(!shm::coversCodes(dense, -1, 2) && !shm::coversCodes(dense, 0, 1));
    EXPECT_FALSE(shm::coversCodes(table, -2, 8));
    EXPECT_FALSE(shm::coversCodes(std::array<Row, 3>{{{-1, ""}, {1, ""}, {1, ""}}}, -1, 1));
}

} // namespace
