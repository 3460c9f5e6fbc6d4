// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Text.h"

#include <gtest/gtest.h>

namespace qel::watch {

TEST(TextTest, Fitted_FillsOrCutsToSoManyCharacters) {
    EXPECT_EQ("ab  ", fitted("ab", 4));
    EXPECT_EQ("abcd", fitted("abcd", 4));
    EXPECT_EQ("abc~", fitted("abcde", 4));
    EXPECT_EQ("", fitted("abc", 0));
    EXPECT_EQ("", fitted("", 0));
    EXPECT_EQ("~", fitted("abc", 1));
}

TEST(TextTest, Fitted_CountsCharactersNotBytes) {
    EXPECT_EQ("21.5 °C ", fitted("21.5 °C", 8));
    EXPECT_EQ("21.5 °C", fitted("21.5 °C", 7));
    EXPECT_EQ("°°~", fitted("°°°°", 3));
    EXPECT_EQ(7U, widthOf("21.5 °C"));
}

TEST(TextTest, LowerCase_LeavesOtherCharacters) {
    EXPECT_EQ("high alarm °Ä", lowerCase("High ALARM °Ä"));
}

TEST(TextTest, AsciiOnly_ReplacesEachOtherCharacter) {
    EXPECT_EQ("21.5 ?C", asciiOnly("21.5 °C"));
    EXPECT_EQ("??", asciiOnly("▁█"));
}

TEST(TextTest, DurationText_TakesTheLargestUnitThatFits) {
    EXPECT_EQ("0s", durationText(0));
    EXPECT_EQ("0s", durationText(999));
    EXPECT_EQ("59s", durationText(59999));
    EXPECT_EQ("1m", durationText(60000));
    EXPECT_EQ("59m", durationText(3599999));
    EXPECT_EQ("1h", durationText(3600000));
    EXPECT_EQ("23h", durationText(86399999));
    EXPECT_EQ("12d", durationText(12ULL * 86400000));
}

} // namespace qel::watch
