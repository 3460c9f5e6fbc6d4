// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/Completion.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFile.h"
#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

namespace qel::tools {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// A program that needs a file and whose texts have all that is special in some shell.
class CompletionTest : public testing::Test {
protected:
    CompletionTest() {
        app_.add_option("FILE", file_)->required()->type_name("");
        app_.add_option("--odd", odd_, "It's [odd]: a \\ and $HOME")->type_name("A:B");
        addCompletionOption(app_);
    }

    /// Exit status and standard output.
    std::pair<std::optional<int>, std::string> parse(char const* shell) {
        std::array<char const*, 3> const words{"odd-program", "--completion", shell};
        testing::internal::CaptureStdout();
        auto const status = parseCommandLine(app_, static_cast<int>(words.size()), words.data());
        return {status, testing::internal::GetCapturedStdout()};
    }

    CLI::App app_{"", "odd-program"};
    std::string file_;
    std::string odd_;
};

TEST_F(CompletionTest, Option_PrintsTheScriptAlthoughArgumentsAreMissing) {
    for (auto const& shell : completionShells()) {
        auto const [status, script] = parse(shell.c_str());
        EXPECT_EQ(exitSuccess, status);
        EXPECT_THAT(script, HasSubstr("made by \"odd-program --completion " + shell + "\"\n"));
        EXPECT_THAT(script, testing::Not(testing::ContainsRegex("@[A-Za-z]+@"))) << "a placeholder";
    }
}

TEST_F(CompletionTest, UnknownShell_IsRefused) {
    testing::internal::CaptureStderr();
    auto const [status, script] = parse("tcsh");
    EXPECT_EQ(exitUsage, status);
    EXPECT_EQ("", script);
    EXPECT_EQ("odd-program: --completion: tcsh not in {bash,fish,zsh}\n",
              testing::internal::GetCapturedStderr());
    EXPECT_THROW(completionScript({}, "tcsh"), std::invalid_argument);
}

TEST_F(CompletionTest, SpecialCharacters_AreQuoted) {
    EXPECT_THAT(parse("zsh").second, HasSubstr(R"('--odd=[It'\''s \[odd\]\: a \\ and $HOME]:A\:B: ')"));
    EXPECT_THAT(parse("fish").second, HasSubstr(R"(-l odd -x -d 'It\'s [odd]: a \\ and $HOME')"));
    EXPECT_THAT(parse("bash").second, StartsWith("# bash completion"));
}

class ScriptSyntaxTest : public CompletionTest, public testing::WithParamInterface<std::string> {};

TEST_P(ScriptSyntaxTest, Script_IsAcceptedByTheShell) {
    test::ChildProcess which({"sh", "-c", "command -v " + GetParam()});
    if (which.readAll().empty()) {
        GTEST_SKIP() << "there is no " << GetParam();
    }
    test::TempFile const file(parse(GetParam().c_str()).second);
    test::ChildProcess shell({GetParam(), "-n", file.path()}, test::ChildProcess::Errors::IntoOutput);
    EXPECT_EQ("", shell.readAll());
    EXPECT_EQ(0, shell.wait());
}

INSTANTIATE_TEST_SUITE_P(All, ScriptSyntaxTest, testing::ValuesIn(completionShells()));

} // namespace

} // namespace qel::tools
