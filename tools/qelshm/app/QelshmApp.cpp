// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmApp.h"

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/common/SafeText.h"
#include "tools/qelshm/app/TrailingCommand.h"
#include "tools/qelshm/app/VerbHelp.h"
#include "tools/qelshm/terminal/Style.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <ostream>
#include <string>

namespace qel::tools {

namespace {

constexpr int schemaVersion = 1; ///< of docs/reference/qelshm-schema.json

/// What programs get that asked for JSON. Standard error has the same for people.
/// @param verb "" if it is unknown; "watch" prints a document a line, so that its last one must be a line, too
void printFailure(std::ostream& out, std::string const& verb, std::string const& problem) {
    using Json = nlohmann::ordered_json;
    int const indent = verb == "watch" ? -1 : 2;
    Json const document{{"schema", schemaVersion},
                        {"verb", verb.empty() ? Json() : Json(verb)},
                        {"error", safeText(problem)}};
    out << document.dump(indent, ' ', true, Json::error_handler_t::replace) << std::endl;
}

bool asksForJson(std::vector<std::string> const& words) {
    return std::find(words.begin(), words.end(), "--json") != words.end();
}

std::vector<char const*> argumentsOf(std::vector<std::string> const& words) {
    std::vector<char const*> arguments(words.size());
    std::transform(words.begin(), words.end(), arguments.begin(),
                   [](std::string const& word) { return word.c_str(); });
    return arguments;
}

std::string parsedVerb(CLI::App const& app) {
    auto const parsed = app.get_subcommands();
    return parsed.empty() ? std::string() : parsed.front()->get_name();
}

} // namespace

int runQelshm(int argc, char const* const* argv, std::ostream& out,
              std::vector<std::unique_ptr<ICommand>> const& commands) {
    CLI::App app("", "qelshm");
    app.formatter(std::make_shared<VerbHelp>()); // inherited by the verbs
    QelshmOptions options;
    auto const optional = defineQelshmOptions(app, options);
    std::vector<CLI::App const*> verbs;
    verbs.reserve(commands.size());
    for (auto const& command : commands) {
        verbs.push_back(&command->define(app, optional));
    }
    auto const words = withTrailingCommand(argc, argv, "--on-change");
    auto const tellProgram = [&](std::string const& problem) {
        if (options.isJson || asksForJson(words)) {
            printFailure(out, parsedVerb(app), problem);
        }
    };
    auto const arguments = argumentsOf(words);
    if (auto const status =
            parseCommandLine(app, static_cast<int>(arguments.size()), arguments.data(), tellProgram)) {
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
    } catch (OutputError const& error) {
        tellError(app, error.what());
        return exitFailure;
    } catch (std::exception const& error) {
        tellError(app, error.what());
        tellProgram(error.what());
        return exitFailure;
    }
    return exitUsage;
}

} // namespace qel::tools
