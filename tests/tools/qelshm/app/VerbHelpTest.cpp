// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/VerbHelp.h"

#include "tools/qelshm/app/QelshmOptions.h"
#include "tools/qelshm/verbs/Commands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gmock/gmock.h>

namespace qel::test {

namespace {

using testing::HasSubstr;
using testing::Not;

/// The verbs of qelshm as the program defines them.
class VerbHelpTest : public testing::Test {
protected:
    VerbHelpTest() {
        app_.formatter(std::make_shared<tools::VerbHelp>());
        auto const optional = tools::defineQelshmOptions(app_, options_);
        for (auto const& command : commands_) {
            verbs_.push_back(&command->define(app_, optional));
        }
    }

    std::string helpOf(std::string const& verb) const { return app_.get_subcommand(verb)->help("qelshm"); }

    CLI::App app_{"", "qelshm"};
    tools::QelshmOptions options_;
    std::vector<std::unique_ptr<tools::ICommand>> commands_ = tools::allCommands();
    std::vector<CLI::App*> verbs_;
};

} // namespace

TEST_F(VerbHelpTest, EveryVerb_HasTwoExamples) {
    for (auto const* const verb : verbs_) {
        if (verb->get_group().empty()) {
            continue; // not for people
        }
        auto const help = helpOf(verb->get_name());
        auto const examples = help.find("\nExamples:\n");
        ASSERT_NE(std::string::npos, examples) << verb->get_name();
        auto const first = help.find(verb->get_name(), examples);
        ASSERT_NE(std::string::npos, first) << verb->get_name();
        EXPECT_NE(std::string::npos, help.find(verb->get_name(), help.find('\n', first))) << help;
    }
}

TEST_F(VerbHelpTest, OwnOptions_ComeBeforeTheCommonOnes) {
    auto const help = helpOf("status");
    auto const common = help.find("\nCommon options:\n");
    ASSERT_NE(std::string::npos, common);
    EXPECT_LT(help.find("--max-age"), common);
    for (auto const* const option : {"--help", "--image", "--wait", "--json", "--color"}) {
        EXPECT_GT(help.find(option), common) << option;
        EXPECT_NE(std::string::npos, help.find(option)) << option;
    }
}

TEST_F(VerbHelpTest, OptionsThatAVerbRefuses_AreNotInItsHelp) {
    EXPECT_THAT(helpOf("hz"), Not(HasSubstr("--image")));
    EXPECT_THAT(helpOf("hz"), HasSubstr("--json"));
    EXPECT_THAT(helpOf("completion"), Not(HasSubstr("--json")));
}

TEST_F(VerbHelpTest, Program_KeepsItsOwnHelp) {
    EXPECT_THAT(app_.help(), HasSubstr("\nOptions:\n"));
    EXPECT_THAT(app_.help(), Not(HasSubstr("Common options")));
}

} // namespace qel::test
