// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/ScriptText.h"

#include "tools/common/completion/CommandLineModel.h"

#include <gmock/gmock.h>

namespace qel::tools {

namespace {

using testing::ElementsAre;

TEST(ScriptTextTest, Replaced_ReplacesEachOccurrenceOnce) {
    EXPECT_EQ("xaabxaabc", replaced("ababc", "a", "xaa"));
    EXPECT_EQ("", replaced("", "a", "b"));
    EXPECT_EQ("aaaa", replaced("aa", "a", "aa")) << "not within what was put in";
}

TEST(ScriptTextTest, QuotedForShell_IsOneWord) {
    EXPECT_EQ("'plain'", quotedForShell("plain"));
    EXPECT_EQ(R"('it'\''s')", quotedForShell("it's"));
    EXPECT_EQ("''", quotedForShell(""));
}

TEST(ScriptTextTest, OptionWords_HaveHyphens) {
    CommandModel command;
    command.options.push_back({"json", "", "", {}});
    command.options.push_back({"depth", "d", "", ArgumentModel{"N", {}, false}});
    EXPECT_THAT(optionWords(command), ElementsAre("--json", "--depth"));
    EXPECT_THAT(valueOptionWords(command), ElementsAre("--depth"));
    EXPECT_EQ("--json --depth", joined(optionWords(command)));
    EXPECT_EQ("", joined({}));
}

} // namespace

} // namespace qel::tools
