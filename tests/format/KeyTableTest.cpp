// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/KeyTable.h"

#include "format/Names.h"
#include "format/ValueFormatter.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using shm::KeyKind;
using shm::keyRow;
using shm::keyTable;
using shm::keyUnit;

unsigned short keyOf(int number) {
    return static_cast<unsigned short>(number);
}

TEST(KeyTableTest, KeyRow_FindsEveryRowAndNothingElse) {
    std::set<int> known;
    for (auto const& row : keyTable) {
        EXPECT_EQ(&keyRow(row.code), &row);
        EXPECT_EQ(row.name, shm::keyName(row.code));
        known.insert(row.code);
    }
    EXPECT_EQ(known.size(), 84U);
    for (int key = 0; key <= 0xFFFF; ++key) {
        if (known.count(key) == 0) {
            auto const& row = keyRow(keyOf(key));
            ASSERT_EQ(row.name, "") << key;
            ASSERT_EQ(row.kind, KeyKind::Number) << key;
            ASSERT_EQ(row.decimals, 1) << key;
            ASSERT_FALSE(row.unit || row.scalepos) << key;
        }
    }
}

TEST(KeyTableTest, KeyUnit_StandsBehindTheNumberOfEveryKey) {
    for (int key = 0; key <= 0xFFFF; ++key) {
        auto const text = tav::ValueFormatter::str(keyOf(key), 0.0, " ");
        auto const blank = text.find(' ');
        ASSERT_EQ(keyUnit(keyOf(key)), blank == std::string::npos ? "" : text.substr(blank + 1)) << key;
    }
}

TEST(KeyTableTest, IsKnownAtCompileTime) {
    static_assert(keyRow(shm::key::voltage).name == "Voltage");
    static_assert(keyRow(shm::key::activeEnergy).kind == KeyKind::Energy);
    static_assert(keyRow(shm::key::socket).kind == KeyKind::PointState);
    static_assert(keyUnit(shm::key::humidity) == "%");
    static_assert(keyUnit(shm::key::powerFactor).empty());
}

} // namespace
