// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerOptions.h"

#include "tools/common/CommandLine.h"
#include "tools/common/Numbers.h"
#include "tools/common/completion/Completion.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <string>

namespace qel::tools {

namespace {

constexpr char const* description = "Serves org.qel.HardwareManager on the system bus, so that readers work "
                                    "without the device's own service.\n\n"
                                    "Answers 1 to \"initialized\" while the region in shared memory is "
                                    "active, else 0. Sends \"shmStructureChanged\"\n"
                                    "when the region became active, when its points or values have changed, "
                                    "and on SIGUSR1. The writing process may\n"
                                    "start, end and restart at any time.";

constexpr char const* footer = R"(Signals:
  SIGUSR1                   sends "shmStructureChanged" now
  SIGINT, SIGTERM, SIGHUP   end the program

Output:
  Standard output: one line when the program begins to serve, per change of the region, per request, and when a signal
  ends the program. With --interval 0 it sees no changes and writes no lines for them. Standard error: errors.

Exit status:
  0  ended by a signal
  1  no system bus, the name is taken or the bus policy refuses it, the bus was lost, the region cannot be read, or the
     output could not be written
  2  wrong arguments

Examples:
  qel-hardware-manager &
  qel-hardware-manager --interval 0.1 --quiet)";

/// @return what is wrong with the text, "" for nothing
std::string intervalProblem(std::string const& text) {
    auto const seconds = parseNumber(text);
    bool const isValid = seconds && (*seconds == 0.0 || (*seconds >= 0.01 && *seconds <= 3600.0));
    return isValid ? "" : "expected 0.01 to 3600, or 0; not " + text;
}

} // namespace

void defineOptions(CLI::App& app, HardwareManagerOptions& options) {
    app.description(description);
    app.footer(footer);
    app.add_option("--interval", options.interval,
                   "Look for a changed structure this often, 0.01 to 3600; 0: announce only on SIGUSR1")
        ->check(intervalProblem)
        ->type_name("SECONDS")
        ->capture_default_str();
    app.add_flag("--quiet", options.isQuiet, "Write nothing but errors");
    addVersionOption(app);
    addCompletionOption(app);
}

} // namespace qel::tools
