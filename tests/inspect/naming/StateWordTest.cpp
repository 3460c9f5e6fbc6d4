// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateWord.h"

#include "format/StateName.h"

#include <gtest/gtest.h>

#include <set>

namespace qel::inspect {

TEST(StateWordTest, NameWord_HasHyphensBetweenWords) {
    EXPECT_EQ("active-power", nameWord("Active Power"));
    EXPECT_EQ("on-alarm-identify", nameWord("On, Alarm, Identify"));
    EXPECT_EQ("a-b", nameWord(" a -(b) "));
    EXPECT_EQ("", nameWord(",;"));
}

TEST(StateWordTest, EveryState_HasAWordOfItsOwnThatReadsBack) {
    std::set<std::string> words;
    for (auto const& row : shm::stateTable) {
        EXPECT_TRUE(words.insert(stateWord(row.code)).second) << row.text;
        EXPECT_EQ(row.code, parseState(stateWord(row.code)));
        EXPECT_EQ(row.code, parseState(row.text));
        EXPECT_EQ(row.code, parseState(std::to_string(static_cast<int>(row.code))));
    }
    EXPECT_EQ("99", stateWord(static_cast<eStatus_Bits>(99)));
}

TEST(StateWordTest, OtherTexts_AreNoState) {
    for (auto const* const text : {"", "on alarm off", "99", "-3", "no"}) {
        EXPECT_EQ(std::nullopt, parseState(text)) << text;
    }
}

} // namespace qel::inspect
