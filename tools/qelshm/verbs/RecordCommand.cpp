// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/RecordBounds.h"

#include "inspect/capture/AlarmCaptures.h"
#include "inspect/capture/CaptureReader.h"
#include "inspect/capture/RotatingCapture.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/ValuePattern.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>

namespace qel::tools {

namespace {

constexpr std::size_t usualFiles = 10; ///< that are kept if only their size is bounded

constexpr char const* recordHelp =
    R"(A capture holds the whole region: log, export and plot choose from it. NAME chooses whose alarms --on-alarm keeps, as
in watch: a value, a point with all its values, with wildcards 'unit1/**:active-power'; it may come later.
Recording goes on while there is no region and while its writing process starts again.

Examples:
  qelshm record unit.rec --duration 60
  qelshm record /var/log/unit.rec --max-size 100M --max-files 7
  qelshm record alarms.rec --on-alarm 5,15 'unit1/**:active-power')";

std::string sizeProblem(std::string const& text) {
    return parseBytes(text) ? "" : '"' + text + "\" is no size; expected bytes, for example 500k, 100M or 2G";
}

std::string marginsProblem(std::string const& text) {
    return parseMargins(text)
               ? ""
               : '"' + text + "\" is no time; expected minutes up to 1440, for example 5 or 5,15";
}

/// Without the characters that disturb in names of files: "20231114T221320Z".
std::string compactTime(std::uint64_t time) {
    auto text = momentText(time);
    text.erase(
        std::remove_if(text.begin(), text.end(), [](char letter) { return letter == '-' || letter == ':'; }),
        text.end());
    return text;
}

/// What there is to record at each moment.
class Samples {
public:
    Samples(RegionInput const& first, std::function<void(std::string const&)> const& tell)
        : tell_(tell),
          object_(first.source.object) {}

    /// Appends what was read. Another object begins with nothing, so that a new writing process shows.
    void append(inspect::ICaptureSink& sink, std::uint64_t time, RegionInput const& input) {
        bool const isThere = input.source.opening == inspect::Opening::Opened && input.image.size() != 0;
        tell(isThere ? std::string() : conditionProblem(input));
        auto const& object = input.source.object;
        bool const isOther = isThere && object_ && object && !inspect::isSameObject(*object_, *object);
        if (isThere) {
            object_ = object;
        }
        if (isOther || !isThere) {
            sink.append(time, wiped_);
        }
        if (isThere) {
            sink.append(time, input.image);
        }
    }

private:
    void tell(std::string const& problem) {
        if (problem != told_ && !problem.empty()) {
            tell_("warning: " + problem + "; recording goes on");
        }
        told_ = problem;
    }

    std::function<void(std::string const&)> const& tell_;
    std::optional<inspect::RegionObject> object_;
    inspect::Image wiped_ =
        inspect::Image::wiped(); ///< stands for a missing region, because it can be replayed
    std::string told_;
};

std::string samplesText(inspect::ICaptureSink const& sink) {
    return std::to_string(sink.samples()) + " samples, " + std::to_string(sink.bytes()) + " bytes";
}

} // namespace

CLI::App& RecordCommand::define(CLI::App& app, OptionalOptions const& optional) {
    constexpr double longest = 1e8;
    auto& verb =
        *app.add_subcommand("record", "Capture changes of the region for --image, log, plot and qel-replay");
    verb.footer(recordHelp);
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
    auto* const names =
        verb.add_option("NAME", names_, "With --on-alarm: points and values whose alarms count")
            ->check(inspect::patternProblem)
            ->type_name("");
    auto* const size =
        verb.add_option("--max-size", maxSize_,
                        "Begin a new file at this size (k, M, G); x.rec becomes x.1.rec, and so on")
            ->check(sizeProblem)
            ->type_name("BYTES");
    auto* const files =
        verb.add_option("--max-files", maxFiles_, "Number of files to keep, 1 to 10000; 10 with --max-size")
            ->check(CLI::Range(std::size_t{1}, std::size_t{10000}).description(""))
            ->type_name("N");
    verb.add_option("--on-alarm", onAlarm_,
                    "Keep only these minutes before and after each alarm, in a file of its own: x.TIME.rec")
        ->check(marginsProblem)
        ->type_name("BEFORE[,AFTER]");
    verb.callback([this, names, size, files] {
        if (names->count() != 0 && onAlarm_.empty()) {
            throw CLI::RequiresError("NAME",
                                     "--on-alarm: a capture holds all values, which log, export and plot "
                                     "choose from; NAME chooses alarms");
        }
        if (files->count() != 0 && size->count() == 0 && onAlarm_.empty()) {
            throw CLI::RequiresError("--max-files", "--max-size or --on-alarm");
        }
    });
    verb.excludes(optional.image);
    return verb;
}

std::unique_ptr<inspect::ICaptureSink> RecordCommand::sink(std::uint64_t now) const {
    inspect::CaptureBounds bounds;
    bounds.size = parseBytes(maxSize_).value_or(0);
    if (auto const margins = parseMargins(onAlarm_); margins && !onAlarm_.empty()) {
        bounds.files = maxFiles_.value_or(0);
        auto const name = [this](std::uint64_t time) {
            return inspect::captureName(file_, compactTime(time));
        };
        auto captures =
            std::make_unique<inspect::AlarmCaptures>(name, margins->before, margins->after, bounds,
                                                     inspect::AlarmEdges({names_.begin(), names_.end()}));
        captures->tryFile(now);
        return captures;
    }
    bounds.files = maxFiles_.value_or(bounds.size == 0 ? 1 : usualFiles);
    return std::make_unique<inspect::RotatingCapture>(file_, bounds);
}

int RecordCommand::run(CommandContext const& context) {
    using Clock = std::chrono::steady_clock;
    auto input = openInput(context.options, context.tell);
    requireOpened(input);
    tellUnmatched(input, context);
    StopSignals const stop;
    auto const sink = this->sink(input.now);
    Samples samples(input, context.tell);
    auto const startTime = input.now;
    auto const start = Clock::now();
    auto moment = start;
    int status = exitSuccess;
    try {
        for (std::uint64_t taken = 1;; ++taken) {
            auto const elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
            samples.append(*sink, startTime + static_cast<std::uint64_t>(elapsed.count()), input);
            moment += secondsAs(interval_);
            bool const isOver =
                (count_ && taken >= *count_) || (duration_ && moment - start > secondsAs(*duration_));
            if (isOver || stop.waitUntil(moment)) {
                break;
            }
            input = liveInput();
        }
        sink->close();
    } catch (inspect::CaptureError const& error) {
        if (sink->samples() == 0) {
            throw;
        }
        context.tell(std::string(error.what()) + "; what was recorded before can be read");
        status = exitFailure;
    }
    print(context, input, *sink);
    return status;
}

void RecordCommand::tellUnmatched(RegionInput const& input, CommandContext const& context) const {
    if (!input.image.isWhole() || !input.image.isActive()) {
        return; // nobody knows yet
    }
    inspect::PointTree const tree(input.image);
    inspect::PointFinder const finder(input.image, tree);
    for (auto const& name : names_) {
        if (!finder.hasMatch(inspect::ValuePattern(name))) {
            context.tell("nothing has the name \"" + name + "\" yet; its alarms are kept when it comes");
        }
    }
}

void RecordCommand::print(CommandContext const& context, RegionInput const& input,
                          inspect::ICaptureSink const& sink) const {
    if (context.options.isJson) {
        auto document = jsonDocument("record", input, {});
        document["file"] = safeText(file_);
        document["samples"] = sink.samples();
        document["bytes"] = sink.bytes();
        auto& files = document["files"] = Json::array();
        for (auto const& file : sink.files()) {
            files.push_back(safeText(file));
        }
        printJson(context.out, document);
        return;
    }
    TextTable table;
    table.add(0, {samplesText(sink)});
    if (!maxSize_.empty() || !onAlarm_.empty()) {
        for (auto const& file : sink.files()) {
            table.add(0, {"  " + file});
        }
    }
    table.print(context.out, context.isColoured);
}

} // namespace qel::tools
