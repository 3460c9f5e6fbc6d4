// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Output.h"
#include "tools/hardwaremanager/HardwareManagerApp.h"
#include "tools/hardwaremanager/HardwareManagerOptions.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <csignal>
#include <exception>
#include <iostream>

namespace qel::tools {

namespace {

int serve(int argc, char const* const* argv) {
    CLI::App app("", "qel-hardware-manager");
    HardwareManagerOptions options;
    defineOptions(app, options);
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    // Readers are served even if nobody reads the output any longer.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        HardwareManagerApp(options, options.isQuiet ? nullptr : &std::cout).run();
        return statusOfOutput(app);
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
        return qel::tools::serve(argc, argv);
    } catch (...) {
        return qel::tools::exitFailure; // not even the error could be reported
    }
}
