// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/Options.h"

#include "tools/common/CommandLine.h"
#include "tools/common/InputError.h"
#include "tools/common/Logging.h"
#include "tools/replay/unit/Topology.h"

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
    "Builds the unit that the files' columns speak of, serves org.qel.HardwareManager on the system bus and "
    "writes the\n"
    "rows on their own clock, with the times they were recorded. Several files start together, each on its "
    "own clock.\n"
    "Everything is checked before anything is published.\n\n"
    "With --from-record a recorded region is played instead: every sample byte for byte, at its time.";

constexpr char const* footer = R"(Recordings:
  CSV with one header line. The first column is timestamp_utc (2023-06-09T07:34:38Z, later from row to row), every
  other one POINT_QUANTITY_UNIT. An empty cell means that there is no reading: the value keeps its number and is
  "Lost".
    inlet1_*, outlet1_* to outlet10_*, phase1_* to phase3_*
                     voltage_V current_A active_power_W reactive_power_var apparent_power_VA power_factor
                     active_energy_Wh; inlet and outlets also frequency_Hz
    total_*          active_power_W reactive_power_var apparent_power_VA power_factor active_energy_Wh
    phase12_voltage_V phase23_voltage_V phase31_voltage_V frequency_Hz
    sensor1_*        temperature_degC relative_humidity_percent
  Outlets 3 and 6 hang on circuit 1, outlets 1, 2, 4 and 5 on circuit 2, outlets 7 to 10 on circuit 3, all below inlet
  1; phases and totals belong to inlet 2.

Computed values:
  Active and apparent energy where no counter is recorded: power by the trapezoid rule over the real time between
  readings, negative power counted as 0. The active power of a circuit, and of the group of outlets 1 to 3: the sum
  of its outlets. The dew point: Magnus formula.

Limits:
  COLUMN:SETTING=NUMBER[,SETTING=NUMBER...] with the settings high-alarm, high-warning, low-warning, low-alarm and
  hysteresis, in the unit of the column. A value that reaches a threshold takes its state, and keeps it until it has
  come back by more than the hysteresis. A file of limits has one a line; '#' starts a comment.

Recorded regions:
  --from-record plays what was recorded from the shared memory itself: slots, states and times are those of the
  recording, the LED follows its global state, and readers are told when its structure changes. Each sample is one
  step. --speed, --until (samples), --hold, --quiet and --log-level go with it.

Output:
  Lines about limits, readings, structure and the global state on standard output; errors on standard error.
  SIGINT, SIGTERM and SIGHUP end the replay. The shared memory is removed at the end.

Exit status:
  0  replayed, or ended by a signal
  1  no system bus, another hardware manager on it, or no shared memory
  2  wrong arguments or input; nothing was published

Examples:
  qel-replay --speed 10 --limit outlet6_active_power_W:high-warning=2000,high-alarm=2400,hysteresis=50 outlets_1s.csv
  qel-replay --loop --plug-after 120 --unplug-after 600 outlets_1s.csv environment_1min.csv
  qel-replay --from-record night.qelrec --speed 60)";

constexpr std::string_view recordOption = "--from-record";
constexpr char const* seconds = "SECONDS";
constexpr std::uint64_t firstRow = 1;
constexpr std::uint64_t mostRows = 1000000000000;

void addRepeatable(CLI::App& app, char const* name, std::vector<double>& times, char const* text) {
    app.add_option(name, times, text)
        ->check(CLI::Range(0.0, 1e9).description(""))
        ->allow_extra_args(false)
        ->type_name(seconds)
        ->group("Structure");
}

void checkFrom(Options const& options, Recordings const& recordings) {
    constexpr std::string_view option = "--from";
    auto const& tables = recordings.tables();
    if (options.from.size() > tables.size()) {
        throw InputError({option},
                         std::to_string(options.from.size()) + " rows for " + std::to_string(tables.size()) +
                             " files",
                         "one row for each file at most");
    }
    for (std::size_t index = 0; index < options.from.size(); ++index) {
        if (options.from[index] > tables[index].rowCount()) {
            throw InputError({option},
                             tables[index].path() + " has no row " + std::to_string(options.from[index]),
                             "1 to " + std::to_string(tables[index].rowCount()));
        }
    }
}

struct Supply {
    Appearances appearances;
    std::string_view needed; ///< what a recording must hold
};

void addChanges(Session::Parts& parts, Supply const& supply) {
    auto const& appearances = supply.appearances;
    if (appearances.comes.empty() && appearances.goes.empty()) {
        return;
    }
    auto const& tables = parts.recordings.tables();
    bool const isFed = std::any_of(tables.begin(), tables.end(), [&](CsvTable const& table) {
        return RecordingFeed(table, parts.recordings, parts.limits).feeds(appearances.point);
    });
    if (!isFed) {
        throw InputError({appearances.comes.empty() ? appearances.goOption : appearances.comeOption},
                         "there is nothing to add or remove", supply.needed);
    }
    parts.schedule.add(appearances);
}

void defineInput(CLI::App& app, Options& options) {
    auto* const files =
        app.add_option("FILE", options.files, "Recordings to replay")->required()->type_name("");
    app.add_option(std::string(recordOption), options.record, "Play a recorded region instead of FILEs")
        ->each([files](std::string const& /*record*/) { files->required(false); })
        ->type_name("FILE");
}

void defineReplay(CLI::App& app, Options& options) {
    app.add_option("--speed", options.speed, "Recorded seconds per second; 0: as fast as possible")
        ->check(CLI::Range(0.0, 1e9).description(""))
        ->type_name("FACTOR")
        ->capture_default_str();
    app.add_option("--from", options.from, "Start at this row, from 1; one for each file, by commas")
        ->check(CLI::Range(firstRow, mostRows).description(""))
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("ROW[,ROW...]");
    app.add_option("--until", options.until, "End after this many rows, of all files together, or samples")
        ->check(CLI::Range(firstRow, mostRows).description(""))
        ->type_name("ROWS");
    app.add_flag("--loop", options.isEndless,
                 "Start each file over when it has ended; times and counters go on");
    app.add_flag("--hold", options.isHeld, "Keep the shared memory after the last row, until a signal comes");
}

/// The first option given that has no meaning for a recorded region, empty for none.
std::string_view misplacedOption(Options const& options) {
    struct Given {
        std::string_view option;
        bool isGiven;
    };
    std::array<Given, 9> const candidates{{{"FILE", !options.files.empty()},
                                           {"--from", !options.from.empty()},
                                           {"--loop", options.isEndless},
                                           {"--limit", !options.limits.empty()},
                                           {"--limits", !options.limitFiles.empty()},
                                           {"--plug-after", !options.plugAfter.empty()},
                                           {"--unplug-after", !options.unplugAfter.empty()},
                                           {"--group-after", !options.groupAfter.empty()},
                                           {"--ungroup-after", !options.ungroupAfter.empty()}}};
    auto const* const found = std::find_if(candidates.begin(), candidates.end(),
                                           [](Given const& candidate) { return candidate.isGiven; });
    return found == candidates.end() ? std::string_view() : found->option;
}

/// How many samples there are up to the limit; each of them can be read and holds a whole region.
std::uint64_t countSamples(inspect::CaptureReader& reader, std::optional<std::uint64_t> limit) {
    while (!limit || reader.samples() < *limit) {
        auto const offset = reader.offset();
        auto const sample = reader.next();
        if (!sample) {
            break;
        }
        if (sample->image.size() != shm::REGION_SIZE) {
            throw InputError({recordOption},
                             "the sample at byte " + std::to_string(offset) +
                                 " was taken from an object of " + std::to_string(sample->image.size()) +
                                 " bytes",
                             "samples of " + std::to_string(shm::REGION_SIZE) +
                                 " bytes; --until ends the replay before it");
        }
    }
    return reader.samples();
}

void defineStructure(CLI::App& app, Options& options) {
    addRepeatable(app, "--plug-after", options.plugAfter, "Plug the sensor in at this replay time");
    addRepeatable(app, "--unplug-after", options.unplugAfter, "Unplug the sensor at this replay time");
    addRepeatable(app, "--group-after", options.groupAfter,
                  "Join outlets 1 to 3 to a group at this replay time");
    addRepeatable(app, "--ungroup-after", options.ungroupAfter, "Dissolve the group at this replay time");
}

} // namespace

void defineOptions(CLI::App& app, Options& options) {
    app.description(description);
    app.footer(footer);
    defineInput(app, options);
    defineReplay(app, options);
    app.add_option("--limit", options.limits, "Set the limits of a column")
        ->allow_extra_args(false)
        ->type_name("LIMIT");
    app.add_option("--limits", options.limitFiles, "Read limits from a file")
        ->allow_extra_args(false)
        ->type_name("FILE");
    defineStructure(app, options);
    app.add_flag("--quiet", options.isQuiet, "Write nothing but errors");
    addLogOption(app, options.logLevel);
    addVersionOption(app);
}

Session::Parts readInput(Options const& options) {
    Session::Parts parts;
    for (auto const& limit : options.limits) {
        parts.limits.add(limit, {"--limit"});
    }
    for (auto const& file : options.limitFiles) {
        parts.limits.addFile(file);
    }
    parts.recordings = Recordings::read(options.files);
    parts.limits.checkColumns(parts.recordings.tables());
    checkFrom(options, parts.recordings);
    addChanges(parts,
               {{sensorPoint, "--plug-after", options.plugAfter, "--unplug-after", options.unplugAfter},
                "a recording with columns of sensor1"});
    addChanges(parts,
               {{socketGroup, "--group-after", options.groupAfter, "--ungroup-after", options.ungroupAfter},
                "a recording with the active power of outlets 1, 2 and 3"});
    for (auto const row : options.from) {
        parts.replay.firstRows.push_back(row - 1);
    }
    parts.replay.rowLimit = options.until;
    parts.replay.isEndless = options.isEndless;
    return parts;
}

CapturePlayer::Parts readRecord(Options const& options) {
    if (auto const misplaced = misplacedOption(options); !misplaced.empty()) {
        throw InputError({misplaced}, "it does not go with --from-record",
                         "none but --speed, --until, --hold, --quiet and --log-level beside it");
    }
    try {
        inspect::CaptureReader reader(options.record);
        auto const samples = countSamples(reader, options.until);
        if (samples == 0) {
            throw InputError({recordOption}, options.record + " holds no sample", "one sample at least");
        }
        return {options.record, samples};
    } catch (inspect::CaptureError const& error) {
        throw InputError({recordOption}, error.what(),
                         "a recorded region; --until ends the replay before a damaged sample");
    }
}

} // namespace qel::tools
