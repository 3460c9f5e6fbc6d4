// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/TrailingCommand.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

using Words = std::vector<std::string>;

Words wordsOf(std::vector<char const*> const& words) {
    return withTrailingCommand(static_cast<int>(words.size()), words.data(), "--run");
}

} // namespace

TEST(TrailingCommandTest, WordsBehindTheCommand_BecomeValuesOfTheOption) {
    EXPECT_EQ((Words{"qelshm", "--run", "sh", "--run=-c", "--run=a b", "--run=--run", "--run", ""}),
              wordsOf({"qelshm", "--run", "sh", "-c", "a b", "--run", ""}));
    EXPECT_EQ((Words{"qelshm", "--run=sh", "--run=--json"}), wordsOf({"qelshm", "--run=sh", "--json"}));
}

TEST(TrailingCommandTest, OtherWords_StayAsTheyAre) {
    EXPECT_EQ(Words{}, wordsOf({}));
    for (auto const& words : {Words{"qelshm", "-x", "unit1"}, Words{"qelshm", "-x", "--run"},
                              Words{"qelshm", "-x", "--run", "sh"}, Words{"qelshm", "-x", "--run=sh"},
                              Words{"qelshm", "--runs", "sh", "-x"}}) {
        std::vector<char const*> texts;
        texts.reserve(words.size());
        for (auto const& word : words) {
            texts.push_back(word.c_str());
        }
        EXPECT_EQ(words, wordsOf(texts));
    }
}

} // namespace qel::tools
