// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchCommand.h"

#include "tools/qelshm/watch/Watch.h"
#include "tools/qelshm/watch/WatchedNames.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <csignal>
#include <ostream>

namespace qel::tools {

namespace {

constexpr char const* footer =
    "NAME is a sensor id or a path such as unit1/inlet1/circuit2/socket5; a point stands for all its values. "
    "What does\n"
    "not exist yet is watched once it does.\n"
    "On a terminal: a table of points and values; ? shows its keys, q quits.\n"
    "Elsewhere: a line for each value whose number or state has changed: time, point, value, state; waits 5 "
    "s for\n"
    "something to watch, if --wait does not tell otherwise.\n"
    "Follows the shared memory when another writer creates it anew.";

constexpr std::uint64_t mostLines = 1000000000000;
constexpr unsigned defaultWait = 5; ///< s

std::string checkName(std::string const& text) {
    return watch::WatchedNames::isName(text) ? ""
                                             : '"' + text +
                                                   "\" is no sensor id and no path; expected for example "
                                                   "0x010001ffffff0000 or unit1/inlet1";
}

} // namespace

CLI::App& WatchCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("watch", "Show values as they change");
    verb.footer(footer);
    verb.add_option("NAME", names_, "Points and values to watch; all without any")
        ->check(checkName)
        ->type_name("");
    verb.add_option("--count", count_, "Write so many lines and exit, also on a terminal")
        ->check(CLI::Range(std::uint64_t{1}, mostLines).description(""))
        ->type_name("LINES");
    verb.add_option("--interval", interval_, "Time between two looks at the shared memory, 0.01 to 3600")
        ->check(CLI::Range(0.01, 3600.0).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    verb.excludes(optional.image);
    verb.excludes(optional.json);
    return verb;
}

int WatchCommand::run(CommandContext const& context) {
    using Seconds = std::chrono::duration<double>;
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // a closed output shows in the stream
    watch::WatchOptions const options{
        names_, count_, std::chrono::duration_cast<std::chrono::milliseconds>(Seconds(interval_)),
        std::chrono::seconds(context.options.wait.value_or(defaultWait))};
    return watch::runWatch(options, context.out, context.tell);
}

} // namespace qel::tools
