#include "tools/qelshm/Options.h"

#include "tools/common/CommandLine.h"
#include "tools/common/Logging.h"
#include "tools/watch/WatchedNames.h"

#include "inspect/Svid.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

#include <string_view>

namespace qel::tools {

namespace {

constexpr char const* description =
    "Shows the points and values that a power distribution unit keeps in shared memory.";

constexpr char const* footer = R"(Waiting:
  The program waits until the hardware manager (org.qel.HardwareManager) is on the system bus and has the shared memory
  ready, and tells on standard error what is missing if that takes more than half a second.

Sensor ids:
  SVID is the id of a point (low 16 bits zero) or of a value (its point's id with the value's key in the low 16 bits),
  as list prints it: hexadecimal with 0x, or decimal.

Exit status:
  0  done, or watch ended by q or a signal
  1  nothing to read: no bus, no hardware manager, no active region or no such id
  2  wrong arguments

Examples:
  qelshm list
  qelshm get 0x0100ffffffff0000
  qelshm watch --count 20 0x010001ffffff0000)";

constexpr char const* watchFooter =
    "NAME is a sensor id or a path such as unit1/inlet1/circuit2/socket5; a point stands for all its values. "
    "What does\n"
    "not exist yet is watched once it does.\n"
    "On a terminal: a table of points and values; ? shows its keys, q quits.\n"
    "Elsewhere: a line for each value whose number or state has changed: time, point, value, state.\n"
    "Needs no D-Bus, and follows the shared memory when another writer creates it anew.";

constexpr std::uint64_t mostLines = 1000000000000;

std::string checkSvid(std::string const& text) {
    return inspect::parseSvid(text)
               ? ""
               : '"' + text +
                     "\" is no sensor id; expected 0x and up to 16 hexadecimal digits, or a "
                     "decimal number of 64 bits";
}

std::string checkName(std::string const& text) {
    return watch::WatchedNames::isName(text) ? ""
                                             : '"' + text +
                                                   "\" is no sensor id and no path; expected for example "
                                                   "0x010001ffffff0000 or unit1/inlet1";
}

void defineWatch(CLI::App& app, ReaderOptions& options) {
    auto& watch = *app.add_subcommand("watch", "Show values as they change");
    watch.footer(watchFooter);
    watch.add_option("NAME", options.svids, "Points and values to watch; all without any")
        ->check(checkName)
        ->type_name("");
    watch.add_option("--count", options.count, "Write so many lines and exit, also on a terminal")
        ->check(CLI::Range(std::uint64_t{1}, mostLines).description(""))
        ->type_name("LINES");
    watch
        .add_option("--interval", options.interval,
                    "Time between two looks at the shared memory, 0.01 to 3600")
        ->check(CLI::Range(0.01, 3600.0).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    watch.callback([&options] { options.command = Command::Watch; });
}

} // namespace

void defineOptions(CLI::App& app, ReaderOptions& options) {
    app.description(description);
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--wait", options.wait, "Wait so long for something to read, 1 to 600")
        ->check(CLI::Range(1U, 600U).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    addLogOption(app, options.logLevel);
    addVersionOption(app);

    app.add_subcommand("list", "Print every point with its type, state and values")->callback([&options] {
        options.command = Command::List;
    });
    app.add_subcommand("tree", "Print the tree of points with their links and value keys")
        ->callback([&options] { options.command = Command::Tree; });
    auto& get = *app.add_subcommand("get", "Print one point with its values, or one value");
    get.add_option("SVID", options.svids, "Sensor id of the point or value")
        ->required()
        ->expected(1)
        ->check(checkSvid)
        ->type_name("");
    get.callback([&options] { options.command = Command::Get; });
    defineWatch(app, options);
}

} // namespace qel::tools
