// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmApp.h"

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/qelshm/verbs/Commands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <exception>
#include <memory>
#include <utility>
#include <vector>

namespace qel::tools {

namespace {

using DefinedCommand = std::pair<CLI::App*, std::unique_ptr<ICommand>>;

int runParsed(std::vector<DefinedCommand> const& commands, CommandContext const& context) {
    for (auto const& [verb, command] : commands) {
        if (verb->parsed()) {
            return command->run(context);
        }
    }
    return exitUsage;
}

} // namespace

int runQelshm(int argc, char const* const* argv, std::ostream& out) {
    CLI::App app("", "qelshm");
    QelshmOptions options;
    auto const optional = defineQelshmOptions(app, options);
    std::vector<DefinedCommand> commands;
    for (auto& command : allCommands()) {
        auto* const verb = &command->define(app, optional);
        commands.emplace_back(verb, std::move(command));
    }
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    auto const tell = [&](std::string const& message) {
        tellError(app, message);
    };
    try {
        return runParsed(commands, {options, out, hasColor(options), tell});
    } catch (std::exception const& error) {
        tellError(app, error.what());
        return exitFailure;
    }
}

} // namespace qel::tools
