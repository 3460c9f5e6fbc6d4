// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchStreams.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/stream/CommandSink.h"
#include "tools/qelshm/stream/CsvSink.h"
#include "tools/qelshm/stream/LineSink.h"
#include "tools/qelshm/stream/Stream.h"
#include "tools/qelshm/stream/SyslogSink.h"
#include "tools/qelshm/verbs/WatchJson.h"

#include <CLI/App.hpp>

#include <memory>
#include <ostream>
#include <utility>

namespace qel::tools {

void WatchStreams::define(CLI::App& verb, OptionalOptions const& optional) {
    constexpr char const* group = "For programs";
    verb.add_flag("--csv", isCsv_, "Print the values, then each change, as CSV rows")
        ->excludes(optional.json)
        ->group(group);
    verb.add_option(
            "--on-change", command_,
            "Run the command with all words after it for each change of a state; its environment has the "
            "change")
        ->allow_extra_args(false) // each word comes as a value of its own, see TrailingCommand.h
        ->type_name("COMMAND")
        ->group(group);
    verb.add_flag("--syslog", isSyslog_, "Write each change of a state to the system's log")->group(group);
}

bool WatchStreams::isWanted(CommandContext const& context) const {
    return context.options.isJson || isCsv_ || isSyslog_ || !command_.empty();
}

int WatchStreams::run(CommandContext const& context, Settings const& settings) const {
    watch::WatchedNames const names(settings.names);
    stream::StreamOptions options{names, settings.interval, settings.wait, {}};
    if (context.options.isJson) {
        options.sinks.push_back(std::make_unique<WatchJson>(context.out, settings.count));
    } else if (isCsv_) {
        options.sinks.push_back(std::make_unique<stream::CsvSink>(context.out, names, settings.count));
    } else {
        options.sinks.push_back(std::make_unique<stream::LineSink>(
            watch::LinePrinter(context.out, names, context.isColoured, settings.count)));
    }
    if (isSyslog_) {
        options.sinks.push_back(std::make_unique<stream::SyslogSink>());
    }
    if (!command_.empty()) {
        options.sinks.push_back(std::make_unique<stream::CommandSink>(command_, context.tell));
    }
    stream::runStream(options, context.tell);
    return exitSuccess;
}

} // namespace qel::tools
