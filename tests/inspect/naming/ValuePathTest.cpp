// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/ValuePath.h"

#include "format/KeyTable.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

namespace qel::inspect {

using test::pointId;

constexpr unsigned keyCount = 0x10000;

TEST(ValuePathTest, Words_AreTheNamesInLowerCaseWithHyphens) {
    EXPECT_EQ("active-power", keyWord(shm::key::activePower));
    EXPECT_EQ("guid", keyWord(shm::key::guid));
    EXPECT_EQ("delta-voltage-12", keyWord(shm::key::deltaVoltage12));
    EXPECT_EQ("device-serial-number-base-unit", keyWord(shm::key::deviceSerialNumberBaseUnit));
    EXPECT_EQ("dummy-key-to-see-if-voltage-20v", keyWord(shm::key::voltageAbove20V));
}

TEST(ValuePathTest, Word_OfAKeyWithoutAName_IsItsNumber) {
    EXPECT_EQ("0x0003", keyWord(0x03));
    EXPECT_EQ("0xffff", keyWord(0xFFFF));
}

TEST(ValuePathTest, EveryWord_IsDifferent_AndLeadsBack) {
    std::set<std::string> words;
    for (unsigned number = 0; number < keyCount; ++number) {
        auto const key = static_cast<unsigned short>(number);
        auto const word = keyWord(key);
        EXPECT_TRUE(words.insert(word).second) << word;
        ASSERT_EQ(std::optional(key), parseKey(word)) << word;
        ASSERT_EQ(std::string::npos, word.find_first_of("*?[]:/ ")) << word;
    }
}

TEST(ValuePathTest, EveryName_IsRead_InAnyCase) {
    for (auto const& row : shm::keyTable) {
        EXPECT_EQ(std::optional(row.code), parseKey(row.name)) << row.name;
    }
    EXPECT_EQ(std::optional(shm::key::activePower), parseKey("ACTIVE power"));
    EXPECT_EQ(std::optional(shm::key::activePower), parseKey("Active-Power"));
}

TEST(ValuePathTest, Numbers_AreRead_InDecimalAndHexadecimal) {
    EXPECT_EQ(std::optional(shm::key::activePower), parseKey("19"));
    EXPECT_EQ(std::optional(shm::key::activePower), parseKey("0x13"));
    EXPECT_EQ(std::optional<unsigned short>(0xFFFF), parseKey("65535"));
}

TEST(ValuePathTest, OtherTexts_AreNoKey) {
    for (char const* text : {"", " ", "-", "activepower", "power", "65536", "-1", "0x10000"}) {
        EXPECT_EQ(std::nullopt, parseKey(text)) << text;
    }
}

TEST(ValuePathTest, Value_IsPathColonWord) {
    EXPECT_EQ("unit1/inlet1:active-power", valuePath(pointId(1, 0, 1), shm::key::activePower));
    EXPECT_EQ("unit1/inlet1:active-power",
              valuePath(pointId(1, 0, 1) | shm::key::voltage, shm::key::activePower));
}

} // namespace qel::inspect
