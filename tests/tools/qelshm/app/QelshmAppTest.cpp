// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmApp.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

TEST(QelshmAppTest, VerbThatFails_PrintsAJsonDocumentBesideItsLine) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    auto const outcome = runQelshm({"--json", "get", "unit1/inlet9", "--image", file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: there is no point \"unit1/inlet9\"; the nearest one is unit1/inlet1\n",
              outcome.errors);
    EXPECT_EQ(nlohmann::json::parse(R"({"schema": 1, "verb": "get",
                "error": "there is no point \"unit1/inlet9\"; the nearest one is unit1/inlet1"})"),
              nlohmann::json::parse(outcome.output));
}

TEST(QelshmAppTest, EveryVerbWithoutARegion_PrintsAJsonDocument) {
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"tree"},
                                               {"list"},
                                               {"get", "unit1"},
                                               {"find", "alarm"},
                                               {"check"},
                                               {"why"},
                                               {"dump", "x.img"},
                                               {"diff", "live", "live"},
                                               {"hz"},
                                               {"record", "x.rec"}}) {
        auto words = arguments;
        words.emplace_back("--json");
        auto const outcome = runQelshm(words);
        EXPECT_EQ(1, outcome.status) << arguments.front();
        auto const document = nlohmann::json::parse(outcome.output);
        EXPECT_EQ(arguments.front(), document.at("verb"));
        EXPECT_EQ("there is no shared-memory object QelSharedMemory", document.at("error"));
    }
}

TEST(QelshmAppTest, WatchThatFails_PrintsItsDocumentOnOneLineLikeTheOthers) {
    for (std::vector<std::string> const& arguments : std::vector<std::vector<std::string>>{
             {"watch", "--json", "--wait", "0"}, {"--json", "watch", "inlet"}, {"watch", "--json", "--no"}}) {
        auto const output = runQelshm(arguments).output;
        ASSERT_EQ('\n', output.back());
        auto const lastLine = output.substr(output.rfind('\n', output.size() - 2) + 1);
        auto const document = nlohmann::json::parse(lastLine, nullptr, false);
        ASSERT_TRUE(document.is_object()) << output;
        EXPECT_EQ("watch", document.at("verb"));
        EXPECT_NE("", document.at("error"));
    }
}

TEST(QelshmAppTest, TextOfAnError_CannotHarmATerminal) {
    auto const outcome = runQelshm({"--json", "list", "--image", "\x1b[2J"});
    EXPECT_THAT(nlohmann::json::parse(outcome.output).at("error"),
                testing::StartsWith("cannot read \\x1B[2J: "));
}

TEST(QelshmAppTest, WithoutJson_StandardOutputStaysEmpty) {
    EXPECT_EQ("", runQelshm({"list"}).output);
}

} // namespace qel::test
