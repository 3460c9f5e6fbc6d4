// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchCommand.h"

#include "tools/common/Durations.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/qelshm/watch/Watch.h"

#include "inspect/naming/ValuePattern.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <csignal>

namespace qel::tools {

namespace {

constexpr char const* footer =
    "NAME is a path such as unit1/inlet1/circuit2/socket5, a value such as "
    "unit1/inlet1:active-power, or a sensor id.\n"
    "Wildcards select several: 'unit1/**:active-power'. A point selects all its values. A "
    "name may belong to a\n"
    "point or value that comes later.\n"
    "On a terminal: a table of points and values; ? shows its keys, q quits.\n"
    "Otherwise: a line for each value whose number or state changes, with time, "
    "point, value and state; without --wait\n"
    "it fails if there is no active region after 5 s.\n"
    "Follows the shared memory when a new writer creates it again.\n\n"
    "Examples:\n"
    "  qelshm watch unit1/inlet1\n"
    "  qelshm watch --count 10 >changes.txt\n"
    "  qelshm watch unit1 --on-change sh -c 'echo $QELSHM_NAME: $QELSHM_STATE >>changes.txt'";

constexpr std::uint64_t mostLines = 1000000000000;
constexpr unsigned defaultWait = 5;       ///< s
constexpr double longestAge = 31536000.0; ///< s, a year

watch::Freshness freshnessOf(std::optional<double> maxAge) {
    watch::Freshness freshness;
    if (maxAge) {
        freshness.value = secondsAs<std::chrono::milliseconds>(*maxAge);
        freshness.unit = freshness.value;
    }
    return freshness;
}

} // namespace

CLI::App& WatchCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("watch", "Show values as they change");
    verb.footer(footer);
    verb.add_option("NAME", names_, "Points and values to watch; everything by default")
        ->check(inspect::patternProblem)
        ->type_name("");
    verb.add_option("--count", count_, "Exit after this number of lines; print lines on a terminal, too")
        ->check(CLI::Range(std::uint64_t{1}, mostLines).description(""))
        ->type_name("LINES");
    verb.add_option("--interval", interval_, "Sampling interval, 0.01 to 3600")
        ->check(finiteBetween(0.01, 3600.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    watch::Freshness const usual;
    verb.add_option("--max-age", maxAge_,
                    "Mark values not delivered for longer; by default after " + secondsText(usual.value) +
                        ", and the unit after " + secondsText(usual.unit))
        ->check(finiteBetween(0.1, longestAge))
        ->type_name("SECONDS");
    verb.excludes(optional.image);
    streams_.define(verb, optional);
    return verb;
}

int WatchCommand::run(CommandContext const& context) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // the stream reports a closed output
    auto const interval = secondsAs<std::chrono::milliseconds>(interval_);
    if (!count_ && !streams_.isWanted(context) && watch::canShowTable()) {
        watch::showTable({names_, interval, context.isColoured, freshnessOf(maxAge_)}, context.tell);
        return exitSuccess;
    }
    return streams_.run(context, {names_, count_, interval,
                                  std::chrono::seconds(context.options.wait.value_or(defaultWait))});
}

} // namespace qel::tools
