// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/QelshmOptions.h"

#include "tools/common/Choices.h"
#include "tools/common/CommandLine.h"
#include "tools/qelshm/app/CaptureTime.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

namespace qel::tools {

namespace {

constexpr char const* description =
    "Inspects the live data that a power distribution unit keeps in shared memory.";

constexpr char const* footer = R"(Points:
  A sensor id as list prints it (hexadecimal with 0x, or decimal), or a path: unit1/inlet1/circuit2/socket5.
  The sensor id of a value (its point's id with the value's key in the low 16 bits) selects that value.

Names:
  A point, or a value as unit1/inlet1:active-power. With wildcards for several: 'unit1/*', 'unit1/**:*power'.

Reading is safe: qelshm copies the shared memory once. It never writes, maps or locks it, and it needs no D-Bus.

Exit status:
  0  success
  1  a finding, no match, no region to read, or an output that cannot be written; the intact parts of a damaged
     region are printed
  2  wrong arguments

Examples:
  qelshm status --max-age 10
  qelshm tree --values --depth 2
  qelshm get unit1/inlet1:active-power
  qelshm --image saved.img find alarm
  qelshm --image night.rec --at -10m why)";

} // namespace

OptionalOptions defineQelshmOptions(CLI::App& app, QelshmOptions& options) {
    constexpr unsigned longestWait = 600;
    app.description(description);
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough();
    OptionalOptions optional{};
    optional.image =
        app.add_option("--image", options.image,
                       "Read an image file of dump or a capture of record instead of the live object")
            ->check([](std::string const& file) {
                return file.empty() ? std::string("missing file name") : std::string();
            })
            ->type_name("FILE");
    app.add_option("--at", options.at,
                   "Moment of a capture: 2023-11-14T22:13:20Z, +5m (from its start) or -10m")
        ->check(captureTimeProblem)
        ->type_name("TIME")
        ->needs(optional.image);
    optional.wait = app.add_option("--wait", options.wait, "Longest wait for an active region, 0 to 600")
                        ->check(CLI::Range(0U, longestWait).description(""))
                        ->type_name("SECONDS")
                        ->excludes(optional.image);
    optional.json = app.add_flag("--json", options.isJson, "Print JSON");
    app.add_option("--color", options.color, "Colour states: auto (on a terminal), always or never")
        ->check(oneOf({"always", "auto", "never"}))
        ->type_name("WHEN")
        ->capture_default_str();
    app.add_option("--now", options.now, "Reference time of ages, in ms since 1970 UTC")
        ->group(""); // hidden: for comparisons with earlier output
    addVersionOption(app);
    return optional;
}

} // namespace qel::tools
