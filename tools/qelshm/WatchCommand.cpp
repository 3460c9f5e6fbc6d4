#include "tools/qelshm/WatchCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/PlainView.h"
#include "tools/qelshm/RegionLink.h"
#include "tools/qelshm/ScreenView.h"
#include "tools/qelshm/Watch.h"

#include "inspect/Svid.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <memory>

namespace qel::tools {

namespace {

constexpr char const* footer =
    "On a terminal: a table that is redrawn when something changes. Arrows, page up and down, home and end "
    "scroll, q "
    "quits.\nElsewhere: a line for each value whose number or state has changed.\n\nWaits, if --wait does "
    "not tell "
    "otherwise, 5 s for the hardware manager (org.qel.HardwareManager) on the system bus.";

constexpr std::uint64_t mostLines = 1000000000000;
constexpr unsigned defaultWait = 5; ///< s

std::string checkSvid(std::string const& text) {
    return inspect::parseSvid(text)
               ? ""
               : '"' + text +
                     "\" is no sensor id; expected 0x and up to 16 hexadecimal digits, or a "
                     "decimal number of 64 bits";
}

} // namespace

CLI::App& WatchCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("watch", "Show values as they change");
    verb.footer(footer);
    verb.add_option("SVID", svids_, "Points and values to watch; all without any")
        ->check(checkSvid)
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
    constexpr double msPerSecond = 1000.0;
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // a closed output shows in the stream
    RegionLink link(std::max(1U, context.options.wait.value_or(defaultWait)),
                    [&](std::string const& missing) { context.tell("waiting, " + missing); });
    std::unique_ptr<IWatchView> view;
    if (isatty(STDOUT_FILENO) == 1 && isatty(STDIN_FILENO) == 1 && !count_) {
        view = std::make_unique<ScreenView>();
    } else {
        view = std::make_unique<PlainView>(context.out, count_);
    }
    std::vector<long long> svids;
    for (auto const& text : svids_) {
        svids.push_back(inspect::parseSvid(text).value()); // checked with the arguments
    }
    std::chrono::milliseconds const interval(static_cast<int>(interval_ * msPerSecond));
    Watch(link, *view, WatchFilter(svids), interval).run();
    return exitSuccess;
}

} // namespace qel::tools
