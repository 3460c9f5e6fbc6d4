// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Logging.h"
#include "tools/common/Output.h"
#include "tools/common/SafeText.h"
#include "tools/replay/ReplayApp.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/ReplayOptions.h"
#include "tools/replay/control/ControlClient.h"
#include "tools/replay/control/ControlCommands.h"
#include "tools/replay/csv/InputError.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <string_view>
#include <utility>

namespace qel::tools {

namespace {

/// Reads the input. Nothing is published before the result is called.
ReplayApp::MakePlayer playerMaker(ReplayOptions const& options, ReplayLog& log) {
    if (!options.capture.empty()) {
        return [parts = readCapture(options), &log](std::function<void()> onStructureChanged) {
            return std::make_unique<CapturePlayer>(parts, log, std::move(onStructureChanged));
        };
    }
    return [parts = readRecordings(options), &log](std::function<void()> onStructureChanged) mutable {
        return std::make_unique<RecordingPlayer>(std::move(parts), log, std::move(onStructureChanged));
    };
}

/// Sends the commands to a running replay and prints its answers.
int sendCommands(CLI::App const& app, ReplayOptions const& options) {
    checkCommands(options);
    ControlClient client(options.control);
    for (auto const& command : options.commands) {
        auto const answer = client.ask(command);
        if (answer.rfind(errorAnswer, 0) == 0) {
            tellError(app, answer.substr(std::string_view(errorAnswer).size()));
            return exitFailure;
        }
        std::cout << safeText(answer) << std::endl;
    }
    return statusOfOutput(app);
}

int replay(int argc, char const* const* argv) {
    CLI::App app("", "qel-replay");
    ReplayOptions options;
    defineOptions(app, options);
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    logToStandardError(options.logLevel);
    // The region must be removed even if nobody reads the output any longer.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        if (!options.commands.empty()) {
            return sendCommands(app, options);
        }
        ReplayLog log(options.isQuiet ? nullptr : &std::cout,
                      options.capture.empty() ? ReplaySteps::Rows : ReplaySteps::Samples);
        ReplayApp(playerMaker(options, log), log, {options.speed, options.isHeld, options.control}).run();
        return statusOfOutput(app);
    } catch (InputError const& error) {
        tellError(app, error.what());
        return exitUsage;
    } catch (std::exception const& error) {
        tellError(app, error.what());
        return exitFailure;
    }
}

} // namespace

} // namespace qel::tools

int main(int argc, char** argv) {
    try {
        qel::tools::openStandardDescriptors();
        return qel::tools::replay(argc, argv);
    } catch (...) {
        return qel::tools::exitFailure; // not even the error could be reported
    }
}
