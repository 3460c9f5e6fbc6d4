#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Logging.h"
#include "tools/qelshm/Commands.h"
#include "tools/qelshm/Options.h"
#include "tools/qelshm/RegionLink.h"
#include "tools/watch/Watch.h"

#include "inspect/Svid.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <vector>

namespace qel::tools {

namespace {

std::vector<long long> svidsOf(ReaderOptions const& options) {
    std::vector<long long> svids;
    for (auto const& text : options.svids) {
        svids.push_back(inspect::parseSvid(text).value()); // checked with the arguments
    }
    return svids;
}

int watchLive(ReaderOptions const& options, CLI::App const& app) {
    using Seconds = std::chrono::duration<double>;
    watch::WatchOptions const live{
        options.svids, options.count,
        std::chrono::duration_cast<std::chrono::milliseconds>(Seconds(options.interval)),
        std::chrono::seconds(options.wait)};
    return watch::runWatch(live, std::cout, [&](std::string const& message) { tellError(app, message); });
}

void runCommand(RegionLink& link, ReaderOptions const& options) {
    switch (options.command) {
    case Command::List:
        printList(link.reader(), std::cout);
        break;
    case Command::Tree:
        printTree(link.reader(), std::cout);
        break;
    case Command::Get:
        for (auto const svid : svidsOf(options)) {
            if (!printOne(link.reader(), svid, std::cout)) {
                throw std::runtime_error("there is no point or value " + inspect::svidText(svid));
            }
        }
        break;
    case Command::Watch:
        break; // needs no link
    }
    std::cout << std::flush;
}

int qelshm(int argc, char const* const* argv) {
    CLI::App app("", "qelshm");
    ReaderOptions options;
    defineOptions(app, options);
    if (auto const status = parseCommandLine(app, argc, argv)) {
        return *status;
    }
    logToStandardError(options.logLevel);
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // a closed output shows in the stream
    try {
        if (options.command == Command::Watch) {
            return watchLive(options, app);
        }
        RegionLink link(options.wait,
                        [&](std::string const& missing) { tellError(app, "waiting, " + missing); });
        runCommand(link, options);
        return exitSuccess;
    } catch (std::exception const& error) {
        tellError(app, error.what());
        return exitFailure;
    }
}

} // namespace

} // namespace qel::tools

int main(int argc, char** argv) {
    try {
        return qel::tools::qelshm(argc, argv);
    } catch (...) {
        return qel::tools::exitFailure; // not even the line that tells of the failure could be written
    }
}
