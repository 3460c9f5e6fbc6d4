// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/common/SafeText.h"

#include "inspect/naming/Nearest.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Error.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <iostream>
#include <vector>

namespace qel::tools {

namespace {

/// The first of the arguments that were not understood, if it stands where a verb should; "" for none.
std::string unknownVerb(CLI::App const& app, std::vector<std::string> const& unknown) {
    auto const isVerbMissing = !app.get_subcommands([](CLI::App const* /*verb*/) { return true; }).empty() &&
                               app.get_subcommands().empty();
    auto const word = std::find_if(unknown.begin(), unknown.end(), [](std::string const& each) {
        return each.empty() || each.front() != '-';
    });
    return isVerbMissing && word == unknown.begin() && word != unknown.end() ? *word : std::string();
}

std::string verbProblem(CLI::App const& app, std::string const& word) {
    inspect::Nearest nearest(word);
    for (auto const* const verb :
         app.get_subcommands([](CLI::App const* each) { return !each->get_group().empty(); })) {
        nearest.add(verb->get_name());
    }
    bool const isNear =
        nearest.distance() <= word.size() / 2 && nearest.distance() < nearest.candidate().size();
    return "there is no verb \"" + word + "\"; " +
           (isNear ? "did you mean " + nearest.candidate() + '?'
                   : app.get_name() + " --help lists the verbs");
}

/// An unknown argument is reported rather than a missing one.
std::string usageProblem(CLI::App const& app, CLI::ParseError const& error) {
    auto const unknown = app.remaining();
    bool const isMissing = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
    bool const isExtra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
    if (unknown.empty() || !(isMissing || isExtra)) {
        return error.what();
    }
    auto const verb = unknownVerb(app, unknown);
    return verb.empty() ? CLI::ExtrasError(unknown).what() : verbProblem(app, verb);
}

} // namespace

void addVersionOption(CLI::App& app) {
    app.set_version_flag("--version", app.get_name() + " " QEL_TOOLS_VERSION, "Print the version and exit");
}

std::optional<int> parseCommandLine(CLI::App& app, int argc, char const* const* argv,
                                    std::function<void(std::string const&)> const& onWrongUsage) {
    try {
        app.parse(argc, argv);
        return std::nullopt;
    } catch (CLI::CallForHelp const&) {
        std::cout << app.help() << std::flush;
        return statusOfOutput(app);
    } catch (CLI::CallForVersion const& version) {
        std::cout << version.what() << std::endl;
        return statusOfOutput(app);
    } catch (CLI::Success const& printed) { // --completion
        std::cout << printed.what() << std::flush;
        return statusOfOutput(app);
    } catch (CLI::ParseError const& error) {
        auto const problem = usageProblem(app, error);
        tellError(app, problem);
        if (onWrongUsage) {
            onWrongUsage(problem);
        }
        return exitUsage;
    }
}

void tellError(CLI::App const& app, std::string const& message) {
    std::cerr << app.get_name() << ": " << safeText(message) << std::endl;
}

} // namespace qel::tools
