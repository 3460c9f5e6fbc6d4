// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CompletionCommand.h"

#include "tools/common/Choices.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/completion/Completion.h"
#include "tools/qelshm/terminal/TextTable.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

namespace qel::tools {

namespace {

/// What the arguments of the verbs may be, by their names.
CandidatesByName candidates() {
    Candidates const points{{}, false, "tree --paths"};
    Candidates const names{{}, false, "complete name", PassedWord::Current};
    Candidates const conditions{{"active", "structure"}, false, "complete name", PassedWord::Current};
    Candidates const namesOfCapture{{}, false, "complete name", PassedWord::Current, true};
    Candidates const keys{{}, false, "complete key", PassedWord::Previous};
    Candidates const images{{"live"}, true};
    return {{"POINT", points},
            {"NAME", names},
            {"log NAME", namesOfCapture},
            {"export NAME", namesOfCapture},
            {"plot NAME", namesOfCapture},
            {"CONDITION", conditions},
            {"KEY", keys},
            {"FILE_A", images},
            {"FILE_B", images}};
}

} // namespace

CLI::App& CompletionCommand::define(CLI::App& app, OptionalOptions const& optional) {
    app_ = &app;
    auto& verb = *app.add_subcommand("completion", "Print a shell completion script");
    verb.footer("Examples:\n"
                "  source <(qelshm completion bash)\n"
                "  qelshm completion fish >~/.config/fish/completions/qelshm.fish");
    verb.add_option("SHELL", shell_, "Shell: bash, fish or zsh")
        ->required()
        ->check(oneOf(completionShells()))
        ->type_name("");
    for (auto* const option : {optional.image, optional.wait, optional.json}) {
        verb.excludes(option);
    }
    return verb;
}

int CompletionCommand::run(CommandContext const& context) {
    auto model = commandLineModel(*app_, candidates());
    model.source = "completion " + shell_;
    model.context = "image";
    writeOutput(context.out, completionScript(model, shell_));
    return exitSuccess;
}

} // namespace qel::tools
