// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayOptions.h"

#include "tools/common/CommandLine.h"
#include "tools/common/Logging.h"
#include "tools/common/Numbers.h"
#include "tools/common/completion/Completion.h"
#include "tools/replay/control/ControlCommands.h"
#include "tools/replay/csv/InputError.h"

#include "inspect/capture/CaptureReader.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace qel::tools {

namespace {

constexpr char const* description =
    "Replays recorded measurements of a power distribution unit into shared memory.\n\n"
    "Creates the unit that the columns of the files describe, serves org.qel.HardwareManager on the system "
    "bus\n"
    "and writes each row when it is due, with its recorded time. Several files start together, each on its "
    "own\n"
    "clock. All input is checked before anything is published.\n\n"
    "With --from-record, plays a capture of a region instead: each sample byte for byte, when it is due.";

constexpr char const* footer = R"(Recordings:
  CSV with one header line. The first column is timestamp_utc, for example 2023-06-09T07:34:38Z, and increases from
  row to row. The other columns are named POINT_QUANTITY_UNIT. An empty cell means that there is no reading: the value
  keeps its number and becomes "Lost". Rows have at most 65536 bytes and 1024 cells. A byte order mark and empty lines at
  the end are ignored.
    inlet1_*, outlet1_* to outlet10_*, phase1_* to phase3_*
                     voltage_V current_A active_power_W reactive_power_var apparent_power_VA power_factor
                     active_energy_Wh; inlet and outlets also frequency_Hz
    total_*          active_power_W reactive_power_var apparent_power_VA power_factor active_energy_Wh
    phase12_voltage_V phase23_voltage_V phase31_voltage_V frequency_Hz
    sensor1_*        temperature_degC relative_humidity_percent
  Circuit 1 feeds outlets 3 and 6, circuit 2 outlets 1, 2, 4 and 5, circuit 3 outlets 7 to 10; all are below inlet 1.
  Phases and totals belong to inlet 2.

Computed values:
  Active and apparent energy without a recorded counter: the power, integrated over the time between readings by the
  trapezoid rule; negative power counts as 0.
  Active power of a circuit, and of the group of outlets 1 to 3: the sum of its outlets' numbers; Lost while one of them
  is Lost.
  Dew point: Magnus formula.

Limits:
  COLUMN:SETTING=NUMBER[,SETTING=NUMBER...] with the settings high-alarm, high-warning, low-warning, low-alarm and
  hysteresis, in the unit of the column. A value that reaches a threshold takes its state, and keeps it until it has
  returned by more than the hysteresis. A file of limits has one limit per line; '#' starts a comment.

Captures:
  --from-record plays a capture that "qelshm record" wrote from the shared memory: slots, states and times are those of
  the capture, the LED shows its global state, and readers are notified when its structure changes. Links that lead
  back, as in a damaged region, are cut, since readers would follow them for ever. With --loop times go on, but counters
  start again. Only --speed, --until (which counts samples), --loop, --now, --hold, --quiet and --log-level are allowed
  with it.

The present:
  With --now the replay begins now: what was recorded N seconds later is stamped N seconds later, divided by the speed.
  Energies are still integrated over the recorded time.

Values set by hand:
  A replay of recordings that was started with --control PATH takes values over a socket, which only its user may use:
    qel-replay --set unit1/inlet1:active-power=4000,alarm --control PATH
  NAME is a value's name as in qelshm(1), also with wildcards. VALUE is in the unit in which qelshm shows it. STATE is
  the name of a state, such as alarm, high-warning or lost, or its number; without it: no-error. The values keep both until --unset NAME
  or the end of the replay, with the time of each row, while all others go on; also after the last row, with --hold.

Output:
  Standard output: one line per crossed limit, change of missing readings, of the structure and of the global state.
  Standard error: errors. SIGINT, SIGTERM and SIGHUP end the replay. The shared memory is removed at the end.

Exit status:
  0  replayed, or ended by a signal
  1  no system bus, another hardware manager on the bus, the shared memory or the control socket cannot be created, a
     command was refused, or the output could not be written
  2  wrong arguments or input; nothing was published

Examples:
  qel-replay --speed 10 --limit outlet6_active_power_W:high-warning=2000,high-alarm=2400,hysteresis=50 outlets_1s.csv
  qel-replay --loop --plug-after 120 --unplug-after 600 outlets_1s.csv environment_1min.csv
  qel-replay --from-record night.rec --speed 60
  qel-replay --now --loop --control "$XDG_RUNTIME_DIR/replay" outlets_1s.csv
  qel-replay --set 'unit1/**:voltage=180,low-alarm' --control "$XDG_RUNTIME_DIR/replay")";

constexpr std::string_view captureOption = "--from-record";
constexpr char const* seconds = "SECONDS";
constexpr double mostSeconds = 1e9;
constexpr std::uint64_t firstRow = 1;
constexpr std::uint64_t mostRows = 1000000000000;

void addRepeatable(CLI::App& app, char const* name, std::vector<double>& times, char const* text) {
    app.add_option(name, times, text)
        ->check(finiteBetween(0.0, mostSeconds))
        ->allow_extra_args(false)
        ->type_name(seconds)
        ->group("Structure");
}

void checkFrom(ReplayOptions const& options, Recordings const& recordings) {
    constexpr std::string_view option = "--from";
    auto const& all = recordings.all();
    if (options.from.size() > all.size()) {
        throw InputError({option}, std::to_string(options.from.size()) + " rows are given",
                         "at most " + std::to_string(all.size()) + ", one per FILE");
    }
    for (std::size_t index = 0; index < options.from.size(); ++index) {
        if (options.from[index] > all[index].rowCount()) {
            throw InputError({option},
                             all[index].path() + " has no row " + std::to_string(options.from[index]),
                             "1 to " + std::to_string(all[index].rowCount()));
        }
    }
}

struct Supply {
    Appearances appearances;
    std::string_view needed; ///< what the recordings must contain
};

void addChanges(RecordingPlayer::Parts& parts, Supply const& supply) {
    auto const& appearances = supply.appearances;
    if (appearances.comes.empty() && appearances.goes.empty()) {
        return;
    }
    auto const& all = parts.recordings.all();
    bool const isFed = std::any_of(all.begin(), all.end(), [&](Recording const& recording) {
        return RecordingFeed(recording, parts.recordings, parts.limits).feeds(appearances.point);
    });
    if (!isFed) {
        throw InputError({appearances.comes.empty() ? appearances.goOption : appearances.comeOption},
                         "nothing to add or remove", supply.needed);
    }
    parts.schedule.add(appearances);
}

void defineInput(CLI::App& app, ReplayOptions& options) {
    auto* const files =
        app.add_option("FILE", options.files, "Recordings to replay")->required()->type_name("");
    app.add_option(std::string(captureOption), options.capture, "Play a capture of a region instead of FILEs")
        ->each([files](std::string const& /*capture*/) { files->required(false); })
        ->type_name("FILE");
    auto const addCommand = [&app, &options, files](char const* name, std::string const& verb,
                                                    char const* type, char const* text) {
        app.add_option_function<std::vector<std::string>>(
               name,
               [&options, files, verb](std::vector<std::string> const& arguments) {
                   files->required(false);
                   for (auto const& argument : arguments) {
                       options.commands.push_back(std::string(verb).append(" ").append(argument));
                   }
               },
               text)
            ->trigger_on_parse() // commands of both options keep their order
            ->allow_extra_args(false)
            ->type_name(type)
            ->group("Running replay");
    };
    addCommand("--set", "set", "NAME=VALUE[,STATE]", "Set values of a running replay by hand; repeatable");
    addCommand("--unset", "unset", "NAME", "Let values follow the recording again; repeatable");
    app.add_option("--control", options.control,
                   "Take commands on a Unix socket at this path; with --set or --unset: send them there")
        ->type_name("PATH")
        ->group("Running replay");
}

void defineReplay(CLI::App& app, ReplayOptions& options) {
    constexpr double fastest = 1e9;
    app.add_option("--speed", options.speed, "Recorded seconds per second; 0: as fast as possible")
        ->check(finiteBetween(0.0, fastest))
        ->type_name("FACTOR")
        ->capture_default_str();
    app.add_option("--from", options.from, "Start at this row, from 1; one per FILE, separated by commas")
        ->check(CLI::Range(firstRow, mostRows).description(""))
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("ROW[,ROW...]");
    app.add_option("--until", options.until, "End after this many rows of all files together, or samples")
        ->check(CLI::Range(firstRow, mostRows).description(""))
        ->type_name("ROWS");
    app.add_flag(
        "--loop", options.isEndless,
        "Restart each file after its last row or sample; times continue, and counters of recordings");
    app.add_flag("--now", options.isNow, "Stamp values with the present instead of the recorded times");
    app.add_flag("--hold", options.isHeld,
                 "Keep the shared memory after the last row, until a signal arrives");
}

/// The first given option that is not allowed with a capture, empty for none.
std::string_view misplacedOption(ReplayOptions const& options) {
    struct Given {
        std::string_view option;
        bool isGiven;
    };
    std::array<Given, 9> const candidates{{{"FILE", !options.files.empty()},
                                           {"--from", !options.from.empty()},
                                           {"--limit", !options.limits.empty()},
                                           {"--limits", !options.limitFiles.empty()},
                                           {"--plug-after", !options.plugAfter.empty()},
                                           {"--unplug-after", !options.unplugAfter.empty()},
                                           {"--group-after", !options.groupAfter.empty()},
                                           {"--ungroup-after", !options.ungroupAfter.empty()},
                                           {"--control", !options.control.empty()}}};
    auto const* const found = std::find_if(candidates.begin(), candidates.end(),
                                           [](Given const& candidate) { return candidate.isGiven; });
    return found == candidates.end() ? std::string_view() : found->option;
}

/// Whether there is something behind the samples that were read, even if it is damaged.
bool isMoreBehind(inspect::CaptureReader& reader) {
    try {
        return reader.next().has_value();
    } catch (inspect::CaptureError const&) {
        return true;
    }
}

/// Counts the samples up to the limit, and checks that each can be read and holds a whole region.
std::uint64_t countSamples(inspect::CaptureReader& reader, std::optional<std::uint64_t> limit) {
    while (!limit || reader.samples() < *limit) {
        auto const offset = reader.offset();
        auto const sample = reader.next();
        if (!sample) {
            break;
        }
        if (sample->image.size() != shm::REGION_SIZE) {
            throw InputError({captureOption},
                             "the sample at byte " + std::to_string(offset) + " is of an object of " +
                                 std::to_string(sample->image.size()) + " bytes",
                             "samples of " + std::to_string(shm::REGION_SIZE) +
                                 " bytes; --until can end the replay before it");
        }
    }
    return reader.samples();
}

Stamps stampsOf(ReplayOptions const& options) {
    return options.isNow ? Stamps::present(options.speed) : Stamps();
}

void defineStructure(CLI::App& app, ReplayOptions& options) {
    addRepeatable(app, "--plug-after", options.plugAfter, "Plug the sensor in at this replay time");
    addRepeatable(app, "--unplug-after", options.unplugAfter, "Unplug the sensor at this replay time");
    addRepeatable(app, "--group-after", options.groupAfter,
                  "Join outlets 1 to 3 to a group at this replay time");
    addRepeatable(app, "--ungroup-after", options.ungroupAfter, "Dissolve the group at this replay time");
}

} // namespace

void defineOptions(CLI::App& app, ReplayOptions& options) {
    app.description(description);
    app.footer(footer);
    defineInput(app, options);
    defineReplay(app, options);
    app.add_option("--limit", options.limits, "Set limits of a column; repeatable")
        ->allow_extra_args(false)
        ->type_name("LIMIT");
    app.add_option("--limits", options.limitFiles, "Read limits from a file; repeatable")
        ->allow_extra_args(false)
        ->type_name("FILE");
    defineStructure(app, options);
    app.add_flag("--quiet", options.isQuiet, "Write nothing but errors");
    addLogOption(app, options.logLevel);
    addCompletionOption(app);
    addVersionOption(app);
}

void checkCommands(ReplayOptions const& options) {
    if (options.control.empty()) {
        throw InputError({"--control"}, "missing",
                         "the path that the running replay was started with, for --set and --unset");
    }
    if (!options.files.empty() || !options.capture.empty()) {
        throw InputError({options.capture.empty() ? "FILE" : captureOption},
                         "not allowed with --set and --unset, which speak to a running replay",
                         "only --control with them");
    }
    for (auto const& command : options.commands) {
        checkCommand(command);
    }
}

RecordingPlayer::Parts readRecordings(ReplayOptions const& options) {
    RecordingPlayer::Parts parts;
    for (auto const& limit : options.limits) {
        parts.limits.add(limit, {"--limit"});
    }
    for (auto const& file : options.limitFiles) {
        parts.limits.addFile(file);
    }
    parts.recordings = Recordings::read(options.files);
    parts.limits.checkColumns(parts.recordings.all());
    checkFrom(options, parts.recordings);
    addChanges(parts,
               {{sensorPoint, "--plug-after", options.plugAfter, "--unplug-after", options.unplugAfter},
                "a recording with columns of sensor1"});
    addChanges(parts,
               {{socketGroup, "--group-after", options.groupAfter, "--ungroup-after", options.ungroupAfter},
                "a recording with the active power of outlets 1, 2 and 3"});
    for (auto const row : options.from) {
        parts.rows.firstRows.push_back(row - 1);
    }
    parts.rows.rowLimit = options.until;
    parts.rows.isEndless = options.isEndless;
    parts.stamps = stampsOf(options);
    return parts;
}

CapturePlayer::Parts readCapture(ReplayOptions const& options) {
    if (auto const misplaced = misplacedOption(options); !misplaced.empty()) {
        throw InputError({misplaced}, "not allowed with --from-record",
                         "only --speed, --until, --loop, --now, --hold, --quiet and --log-level with it");
    }
    try {
        inspect::CaptureReader reader(options.capture);
        CapturePlayer::Parts parts;
        parts.samples.file = options.capture;
        parts.samples.isEndless = options.isEndless;
        parts.samples.limit = options.until;
        parts.samples.samples = countSamples(reader, options.until);
        if (parts.samples.samples == 0) {
            throw InputError({captureOption}, options.capture + " is empty", "at least one sample");
        }
        parts.samples.isCutShort = parts.samples.samples == options.until && isMoreBehind(reader);
        parts.stamps = stampsOf(options);
        return parts;
    } catch (inspect::CaptureError const& error) {
        throw InputError({captureOption}, error.what(),
                         "a capture of qelshm record; --until can end the replay before a damaged sample");
    }
}

} // namespace qel::tools
