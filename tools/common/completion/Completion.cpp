// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/Completion.h"

#include "tools/common/Choices.h"
#include "tools/common/completion/BashCompletion.h"
#include "tools/common/completion/FishCompletion.h"
#include "tools/common/completion/ZshCompletion.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Error.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace qel::tools {

namespace {

struct Shell {
    char const* name;
    std::string (*script)(CommandLineModel const&);
};

constexpr std::array<Shell, 3> shells{
    {{"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}}};

/// Ends parsing as --version does; the text is the script.
class CallForCompletion : public CLI::Success {
public:
    explicit CallForCompletion(std::string script)
        : Success("CallForCompletion", std::move(script), CLI::ExitCodes::Success) {}
};

} // namespace

std::vector<std::string> const& completionShells() {
    static std::vector<std::string> const names = [] {
        std::vector<std::string> all;
        all.reserve(shells.size());
        for (auto const& shell : shells) {
            all.emplace_back(shell.name);
        }
        return all;
    }();
    return names;
}

std::string completionScript(CommandLineModel const& model, std::string const& shell) {
    auto const* const found = std::find_if(shells.begin(), shells.end(),
                                           [&](Shell const& candidate) { return candidate.name == shell; });
    if (found == shells.end()) {
        throw std::invalid_argument("no completion for the shell " + shell);
    }
    return found->script(model);
}

void addCompletionOption(CLI::App& app) {
    constexpr char const* option = "--completion";
    app.add_option_function<std::string>(
           option,
           [&app](std::string const& shell) {
               auto model = commandLineModel(app, {});
               model.source = std::string(option) + ' ' + shell;
               throw CallForCompletion(completionScript(model, shell));
           },
           "Print a completion script for this shell and exit: bash, fish or zsh")
        ->check(oneOf(completionShells()))
        ->type_name("SHELL");
}

} // namespace qel::tools
