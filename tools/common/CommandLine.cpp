// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/common/SafeText.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Error.hpp>
#include <CLI/Formatter.hpp>

#include <iostream>

namespace qel::tools {

void addVersionOption(CLI::App& app) {
    app.set_version_flag("--version", app.get_name() + " " QEL_TOOLS_VERSION, "Print the version and exit");
}

std::optional<int> parseCommandLine(CLI::App& app, int argc, char const* const* argv) {
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
        // An unknown argument is reported rather than a missing one.
        bool const isUnknown = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError) &&
                               !app.remaining().empty();
        tellError(app, isUnknown ? CLI::ExtrasError(app.remaining()).what() : error.what());
        return exitUsage;
    }
}

void tellError(CLI::App const& app, std::string const& message) {
    std::cerr << app.get_name() << ": " << safeText(message) << std::endl;
}

} // namespace qel::tools
