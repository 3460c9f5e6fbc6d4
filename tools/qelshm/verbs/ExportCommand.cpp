// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ExportCommand.h"

#include "tools/common/Choices.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/qelshm/terminal/TextTable.h"

#include "inspect/image/OutputFile.h"

#include <CLI/App.hpp>

namespace qel::tools {

namespace {

constexpr char const* exportHelp =
    R"(wide: a row for each time, a column for each value. long: a row for each time and value, with its state.
A value without a number, because nothing was delivered yet or its point is not there, has an empty cell.

Examples:
  qelshm export night.rec --csv --interval 60 'unit1/**:active-power' -o power.csv
  qelshm export night.rec --csv --layout long unit1/inlet1 --from -10m)";

} // namespace

CLI::App& ExportCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("export", "Write values of a capture as CSV");
    verb.footer(exportHelp);
    arguments_.define(verb, optional, "Values, by themselves or with their points; everything by default",
                      false);
    verb.add_flag("--csv", isCsv_, "Write CSV, which is the only format");
    verb.add_option("--layout", layout_, "Rows and columns: wide or long")
        ->check(oneOf({"long", "wide"}))
        ->type_name("LAYOUT")
        ->capture_default_str();
    verb.add_option("--interval", interval_,
                    "Time between two rows, 0.001 to 86400; that of the samples by default")
        ->check(finiteBetween(0.001, 86400.0))
        ->type_name("SECONDS");
    verb.add_option("-o,--output", output_,
                    "Write to a file, as a whole or not at all, instead of standard output, which is -")
        ->type_name("FILE");
    verb.excludes(optional.json);
    return verb;
}

int ExportCommand::run(CommandContext const& context) {
    arguments_.requireOther(output_);
    auto const timeline = arguments_.timeline(context);
    auto const range = arguments_.range(timeline);
    std::optional<std::uint64_t> interval;
    if (interval_) {
        interval = static_cast<std::uint64_t>(secondsAs<std::chrono::milliseconds>(*interval_).count());
    }
    CsvExport const table(arguments_.patterns(), arguments_.values(timeline, range),
                          layout_ == "long" ? CsvLayout::Long : CsvLayout::Wide, interval);
    if (output_.empty() || output_ == "-") {
        table.write(timeline, range, [&](std::string_view text) { writeOutput(context.out, text); });
        return exitSuccess;
    }
    inspect::OutputFile file(output_);
    table.write(timeline, range, [&](std::string_view text) { file.write(text); });
    file.finish();
    return exitSuccess;
}

} // namespace qel::tools
