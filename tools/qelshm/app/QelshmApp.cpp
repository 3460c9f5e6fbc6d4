// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmApp.h"

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/qelshm/terminal/Style.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <unistd.h>

#include <cstddef>
#include <exception>

namespace qel::tools {

int runQelshm(int argc, char const* const* argv, std::ostream& out,
              std::vector<std::unique_ptr<ICommand>> const& commands) {
    CLI::App app("", "qelshm");
    QelshmOptions options;
    auto const optional = defineQelshmOptions(app, options);
    std::vector<CLI::App const*> verbs;
    verbs.reserve(commands.size());
    for (auto const& command : commands) {
        verbs.push_back(&command->define(app, optional));
    }
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    auto const tell = [&](std::string const& message) {
        tellError(app, message);
    };
    try {
        for (std::size_t index = 0; index < verbs.size(); ++index) {
            if (verbs[index]->parsed()) {
                auto const status =
                    commands[index]->run({options, out, mayColour(options.color, STDOUT_FILENO), tell});
                if (hasOutputFailed(out)) {
                    throw OutputError();
                }
                return status;
            }
        }
    } catch (std::exception const& error) {
        tellError(app, error.what());
        return exitFailure;
    }
    return exitUsage;
}

} // namespace qel::tools
