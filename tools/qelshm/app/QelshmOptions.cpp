// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmOptions.h"

#include "tools/common/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

#include <unistd.h>

#include <cstdlib>
#include <set>
#include <string_view>

namespace qel::tools {

namespace {

constexpr char const* description =
    "Shows the points and values that a power distribution unit keeps in shared memory.";

constexpr char const* footer = R"(Points:
  By sensor id (0x and hexadecimal digits, or decimal) as list prints it, or by path: unit1/inlet1/circuit2/socket5.
  The sensor id of a value (its point's id with the value's key in the low 16 bits) stands for that value.

Looking does no harm: the shared memory is copied once and never written, mapped or locked, and nothing
needs D-Bus.

Exit status:
  0  all is well
  1  something was found, or there is nothing to look at; a broken region is shown as far as it is sound
  2  wrong arguments

Examples:
  qelshm status --max-age 10
  qelshm tree --values --depth 2
  qelshm get unit1/inlet1 "active power"
  qelshm --image saved.img find alarm)";

char const* environment(char const* name) {
    auto const* const text = std::getenv(name);
    return text != nullptr ? text : "";
}

} // namespace

OptionalOptions defineQelshmOptions(CLI::App& app, QelshmOptions& options) {
    constexpr unsigned longestWait = 600;
    app.description(description);
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough();
    OptionalOptions optional{};
    optional.image = app.add_option("--image", options.image,
                                    "Look at a file that dump has written, in place of "
                                    "the live object")
                         ->check([](std::string const& file) {
                             return file.empty() ? std::string("a file is needed") : std::string();
                         })
                         ->type_name("FILE");
    optional.wait = app.add_option("--wait", options.wait, "Wait so long for an active region, 0 to 600")
                        ->check(CLI::Range(0U, longestWait).description(""))
                        ->type_name("SECONDS")
                        ->excludes(optional.image);
    optional.json = app.add_flag("--json", options.isJson, "Write JSON");
    app.add_option("--color", options.color, "Colour by state: auto (on a terminal), always or never")
        ->check(CLI::IsMember(std::set<std::string>{"auto", "always", "never"}).description(""))
        ->type_name("WHEN")
        ->capture_default_str();
    app.add_option("--now", options.now, "Time that ages count from, in ms since 1970 UTC")
        ->group(""); // not shown: for comparisons with what was printed before
    addVersionOption(app);
    return optional;
}

bool hasColor(QelshmOptions const& options) {
    if (options.color != "auto") {
        return options.color == "always";
    }
    return isatty(STDOUT_FILENO) == 1 && std::string_view(environment("NO_COLOR")).empty() &&
           std::string_view(environment("TERM")) != "dumb";
}

} // namespace qel::tools
