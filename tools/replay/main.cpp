// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/InputError.h"
#include "tools/common/Logging.h"
#include "tools/replay/Options.h"
#include "tools/replay/ReplayApp.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/capture/CapturePlayer.h"
#include "tools/replay/unit/Session.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <utility>

namespace qel::tools {

namespace {

/// Reads the input; nothing is published before the maker is called.
ReplayApp::MakeSession sessionMaker(Options const& options, ReplayLog& log) {
    if (!options.record.empty()) {
        return [parts = readRecord(options), &log](std::function<void()> onStructureChanged) {
            return std::make_unique<CapturePlayer>(parts, log, std::move(onStructureChanged));
        };
    }
    return [parts = readInput(options), &log](std::function<void()> onStructureChanged) mutable {
        return std::make_unique<Session>(std::move(parts), log, std::move(onStructureChanged));
    };
}

int replay(int argc, char const* const* argv) {
    CLI::App app("", "qel-replay");
    Options options;
    defineOptions(app, options);
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    logToStandardError(options.logLevel);
    // A reader of the lines that goes away must not keep the region from being removed.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        ReplayLog log(options.isQuiet ? nullptr : &std::cout,
                      options.record.empty() ? ReplaySteps::Rows : ReplaySteps::Samples);
        ReplayApp(sessionMaker(options, log), log, options.speed, options.isHeld).run();
        return exitSuccess;
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
        return qel::tools::replay(argc, argv);
    } catch (...) {
        return qel::tools::exitFailure; // not even the line that tells of the failure could be written
    }
}
