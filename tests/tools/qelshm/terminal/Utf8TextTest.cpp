// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Utf8Text.h"

#include <gtest/gtest.h>

namespace qel::tools {

TEST(Utf8TextTest, Fitted_FillsOrCutsToSoManyCharacters) {
    EXPECT_EQ("ab  ", fitted("ab", 4));
    EXPECT_EQ("abcd", fitted("abcd", 4));
    EXPECT_EQ("abc~", fitted("abcde", 4));
    EXPECT_EQ("", fitted("abc", 0));
    EXPECT_EQ("", fitted("", 0));
    EXPECT_EQ("~", fitted("abc", 1));
}

TEST(Utf8TextTest, Fitted_CountsCharactersNotBytes) {
    EXPECT_EQ("21.5 °C ", fitted("21.5 °C", 8));
    EXPECT_EQ("21.5 °C", fitted("21.5 °C", 7));
    EXPECT_EQ("°°~", fitted("°°°°", 3));
    EXPECT_EQ(7U, widthOf("21.5 °C"));
}

TEST(Utf8TextTest, Shortened_KeepsBothEnds) {
    EXPECT_EQ("Active Power", shortened("Active Power", 12));
    EXPECT_EQ("Activ~Power", shortened("Active Power", 11));
    EXPECT_NE(shortened("Active Power", 8), shortened("Active Energy", 8));
    EXPECT_EQ("a~d", shortened("abcd", 3));
    EXPECT_EQ("~d", shortened("abcd", 2));
    EXPECT_EQ("~", shortened("abcd", 1));
    EXPECT_EQ("", shortened("abcd", 0));
    EXPECT_EQ("°~°", shortened("°°°°", 3));
    EXPECT_EQ("", shortened("", 0));
}

TEST(Utf8TextTest, ContainsIgnoringCase_ComparesAsciiLettersAloneWithoutCase) {
    EXPECT_TRUE(containsIgnoringCase("High ALARM °Ä", "h alarm °"));
    EXPECT_TRUE(containsIgnoringCase("21.5 °Ä", "Ä"));
    EXPECT_FALSE(containsIgnoringCase("21.5 °Ä", "ä"));
    EXPECT_FALSE(containsIgnoringCase("[", "{")) << "no letters";
    EXPECT_FALSE(containsIgnoringCase("alarm", "alarms"));
    EXPECT_TRUE(containsIgnoringCase("", ""));
}

TEST(Utf8TextTest, AsciiOnly_ReplacesEachOtherCharacter) {
    EXPECT_EQ("21.5 ?C", asciiOnly("21.5 °C"));
    EXPECT_EQ("??", asciiOnly("▁█"));
}

} // namespace qel::tools
