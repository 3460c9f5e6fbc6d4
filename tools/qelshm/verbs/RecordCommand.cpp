// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/common/SafeText.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "inspect/capture/CaptureWriter.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

namespace qel::tools {

CLI::App& RecordCommand::define(CLI::App& app, OptionalOptions const& optional) {
    constexpr double longest = 1e8;
    auto& verb = *app.add_subcommand("record", "Capture changes of the region for qel-replay");
    verb.footer("Examples:\n"
                "  qelshm record night.rec --duration 28800\n"
                "  qelshm record burst.rec --interval 0.01 --count 500");
    verb.add_option("FILE", file_, "Output file; an existing file is not overwritten")
        ->required()
        ->type_name("");
    verb.add_option("--interval", interval_, "Sampling interval, 0.001 to 3600")
        ->check(finiteBetween(0.001, 3600.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    verb.add_option("--duration", duration_, "Stop after this time")
        ->check(finiteBetween(0.0, longest))
        ->type_name("SECONDS");
    verb.add_option("--count", count_, "Stop after this number of samples")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1000000000000}).description(""))
        ->type_name("SAMPLES");
    verb.excludes(optional.image);
    return verb;
}

int RecordCommand::run(CommandContext const& context) {
    using Clock = std::chrono::steady_clock;
    auto input = openInput(context.options, context.tell);
    requireOpened(input);
    StopSignals const stop;
    inspect::CaptureWriter writer(file_, input.now);
    auto const start = Clock::now();
    auto moment = start;
    int status = exitSuccess;
    while (true) {
        auto const elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
        writer.append(static_cast<std::uint64_t>(elapsed.count()), input.image);
        moment += secondsAs(interval_);
        bool const isOver =
            (count_ && writer.samples() >= *count_) || (duration_ && moment - start > secondsAs(*duration_));
        if (isOver || stop.waitUntil(moment)) {
            break;
        }
        input = liveInput();
        auto const problem =
            input.source.opening == inspect::Opening::Opened ? std::string() : conditionProblem(input);
        if (!problem.empty()) {
            context.tell(problem);
            status = exitFailure;
            break;
        }
    }
    writer.close();
    if (context.options.isJson) {
        auto document = jsonDocument("record", input, {});
        document["file"] = safeText(file_);
        document["samples"] = writer.samples();
        document["bytes"] = writer.size();
        printJson(context.out, document);
    } else {
        TextTable table;
        table.add(
            0, {std::to_string(writer.samples()) + " samples, " + std::to_string(writer.size()) + " bytes"});
        table.print(context.out, context.isColoured);
    }
    return status;
}

} // namespace qel::tools
