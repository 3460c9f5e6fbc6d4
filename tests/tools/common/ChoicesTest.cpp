// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Choices.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gmock/gmock.h>

namespace qel::tools {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ChoicesTest, ChoicesOf_AreTheWordsInTheirOrder) {
    CLI::App app;
    std::string text;
    auto& sut = *app.add_option("--colour", text)->check(oneOf({"red", "blue"}));
    EXPECT_THAT(choicesOf(sut), ElementsAre("red", "blue"));
}

TEST(ChoicesTest, ChoicesOf_OtherChecksAreNone) {
    CLI::App app;
    int number = 0;
    EXPECT_THAT(choicesOf(*app.add_option("--free", number)), IsEmpty());
    EXPECT_THAT(choicesOf(*app.add_option("--range", number)->check(CLI::Range(1, 9))), IsEmpty());
}

TEST(ChoicesTest, OneOf_RefusesOtherWords) {
    EXPECT_EQ("", oneOf({"red", "blue"})("red"));
    EXPECT_EQ("green not in {red,blue}", oneOf({"red", "blue"})("green"));
    EXPECT_NE("", oneOf({"red", "blue"})("RED"));
}

TEST(ChoicesTest, OneOf_WithoutLetterCaseGivesTheWordItself) {
    std::string word = "RED";
    EXPECT_EQ("", oneOf({"red", "blue"}, LetterCase::Ignored)(word));
    EXPECT_EQ("red", word);
}

} // namespace

} // namespace qel::tools
