// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/CommandLineModel.h"

#include "tools/common/Choices.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gmock/gmock.h>

namespace qel::tools {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CommandLineModelTest : public testing::Test {
protected:
    CommandLineModel model(CandidatesByName const& known = {}) { return commandLineModel(app_, known); }

    CLI::App app_{"", "a-program"};
    std::string text_;
    std::vector<std::string> texts_;
    bool flag_ = false;
};

TEST_F(CommandLineModelTest, Options_HaveNamesDescriptionsAndArguments) {
    app_.add_option("-w,--when", text_, "When to do it")->check(oneOf({"now", "later"}))->type_name("WHEN");
    app_.add_flag("--quiet", flag_, "Say nothing");
    auto const sut = model();
    EXPECT_EQ("a-program", sut.program.name);
    EXPECT_EQ("a_program", sut.functionName());
    ASSERT_EQ(3U, sut.program.options.size());
    EXPECT_EQ("help", sut.program.options[0].name);
    EXPECT_EQ("h", sut.program.options[0].shortName);
    auto const& when = sut.program.options[1];
    EXPECT_EQ("when", when.name);
    EXPECT_EQ("w", when.shortName);
    EXPECT_EQ("When to do it", when.description);
    ASSERT_TRUE(when.argument);
    EXPECT_EQ("WHEN", when.argument->name);
    EXPECT_THAT(when.argument->candidates.words, ElementsAre("now", "later"));
    EXPECT_FALSE(when.argument->isRepeatable);
    EXPECT_FALSE(sut.program.options[2].argument) << "a flag";
}

TEST_F(CommandLineModelTest, HiddenOptions_AreLeftOut) {
    app_.add_option("--secret", text_)->group("");
    EXPECT_EQ(1U, model().program.options.size()) << "the help";
}

TEST_F(CommandLineModelTest, HiddenVerbs_AreLeftOut) {
    app_.add_subcommand("secret", "For programs")->group("");
    EXPECT_THAT(model().verbs, IsEmpty());
}

TEST_F(CommandLineModelTest, Arguments_KeepTheirOrder) {
    app_.add_option("FILE", text_)->type_name("");
    app_.add_option("NAME", texts_)->type_name("");
    auto const sut = model({{"NAME", {{"one", "two"}}}}).program.arguments;
    ASSERT_EQ(2U, sut.size());
    EXPECT_EQ("FILE", sut[0].name);
    EXPECT_TRUE(sut[0].candidates.areFiles);
    EXPECT_FALSE(sut[0].isRepeatable);
    EXPECT_THAT(sut[1].candidates.words, ElementsAre("one", "two"));
    EXPECT_TRUE(sut[1].isRepeatable);
}

TEST_F(CommandLineModelTest, CandidatesOfOneVerb_GoBeforeThoseOfAll) {
    for (auto const* const name : {"show", "hide"}) {
        app_.add_subcommand(name, "")->add_option("NAME", text_)->type_name("");
    }
    auto const sut = model({{"NAME", {{"one"}}}, {"hide NAME", {{"two"}}}}).verbs;
    EXPECT_THAT(sut.at(0).arguments.at(0).candidates.words, ElementsAre("one"));
    EXPECT_THAT(sut.at(1).arguments.at(0).candidates.words, ElementsAre("two"));
}

TEST_F(CommandLineModelTest, Verbs_HaveOnlyTheirOwnOptions) {
    app_.add_flag("--json", flag_);
    auto& verb = *app_.add_subcommand("show", "Show it");
    verb.add_option("--depth", text_);
    auto const sut = model();
    ASSERT_EQ(1U, sut.verbs.size());
    EXPECT_EQ("show", sut.verbs[0].name);
    EXPECT_EQ("Show it", sut.verbs[0].description);
    ASSERT_EQ(1U, sut.verbs[0].options.size()) << "--help is the program's, too";
    EXPECT_EQ("depth", sut.verbs[0].options[0].name);
    EXPECT_THAT(sut.verbs[0].arguments, IsEmpty());
}

} // namespace

} // namespace qel::tools
