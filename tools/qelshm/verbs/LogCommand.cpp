// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/LogCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/verbs/DifferenceText.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/Names.h"
#include "inspect/capture/CaptureLog.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/ValuePath.h"

#include <CLI/App.hpp>

#include <cmath>

namespace qel::tools {

namespace {

using inspect::CaptureEvent;

constexpr char const* logHelp =
    R"(The events: state and value state (before => after), global state, point added, point removed, value added,
value removed, parent, slot, type; inactive and restart of the writing process; gap: no sample for long.
NAME is a point or value, with wildcards: unit1/inlet1, unit1/**:active-power. Restarts and gaps are always listed.

Examples:
  qelshm log night.rec
  qelshm log night.rec --from -2h 'unit1/**:active-power')";

// A log may be long, so its lines are printed as they come; these widths fit nearly all of them.
constexpr std::size_t timeWidth = 24;
constexpr std::size_t eventWidth = 13;
constexpr std::size_t nameWidth = 44;

std::string padded(std::string text, std::size_t width) {
    auto const used = widthOf(text);
    return text.append(used < width ? width - used : 0, ' ') + "  ";
}

std::string gapText(std::uint64_t ms) {
    return "no sample for " + std::to_string(std::llround(static_cast<double>(ms) / 1000.0)) + " s";
}

std::string nameOf(CaptureEvent const& event) {
    if (!event.difference) {
        return {};
    }
    auto const& difference = *event.difference;
    return difference.key ? inspect::valuePath(difference.svid, *difference.key) : difference.path;
}

/// Before and after, in colour if that is wanted.
std::string sidesText(CaptureEvent const& event, bool isColoured) {
    if (!event.difference) {
        return event.kind == CaptureEvent::Kind::Gap ? gapText(event.gap) : std::string();
    }
    auto const& difference = *event.difference;
    if (difference.kind == inspect::DifferenceKind::PointAdded ||
        difference.kind == inspect::DifferenceKind::PointRemoved) {
        return {}; // its sides are slots
    }
    auto const [before, after] = sideTexts(difference);
    auto const cell = [&](std::string const& text, inspect::DifferenceSide const& side) {
        auto const safe = safeText(text);
        return isColoured ? styled(safe, sideStyle(side)) : safe;
    };
    return cell(before, difference.before) + " => " + cell(after, difference.after);
}

std::string line(CaptureEvent const& event, bool isColoured) {
    auto text = padded(momentText(event.time), timeWidth) + padded(eventName(event), eventWidth) +
                padded(safeText(nameOf(event)), nameWidth) + sidesText(event, isColoured);
    return text.erase(text.find_last_not_of(' ') + 1) + '\n';
}

Json jsonEvent(CaptureEvent const& event) {
    Json document{{"at", jsonTime(event.time)}, {"event", eventName(event)}};
    for (char const* const name : {"svid", "path", "key", "name", "before", "after", "gapMs"}) {
        document[name] = nullptr;
    }
    if (event.kind == CaptureEvent::Kind::Gap) {
        document["gapMs"] = event.gap;
    }
    if (event.difference) {
        auto const& difference = *event.difference;
        document["svid"] = shm::svidText(difference.svid);
        document["path"] = textOrNull(difference.path);
        document["before"] = jsonSide(difference.before, difference);
        document["after"] = jsonSide(difference.after, difference);
        if (difference.key) {
            document["key"] = *difference.key;
            document["name"] = shm::keyName(*difference.key);
        }
    }
    return document;
}

} // namespace

CLI::App& LogCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("log", "List state and structure changes of a capture");
    verb.footer(logHelp);
    arguments_.define(verb, optional, "Points and values; everything by default", false);
    return verb;
}

int LogCommand::run(CommandContext const& context) {
    auto const timeline = arguments_.timeline(context);
    auto const range = arguments_.range(timeline);
    inspect::CaptureLog const log(arguments_.patterns());
    if (auto const index = log.unmatched(timeline, range.from, range.until)) {
        throw inspect::NotFoundError(arguments_.nothingText(*index, "point or value"));
    }
    if (!context.options.isJson) {
        log.read(timeline, range.from, range.until, [&](CaptureEvent const& event) {
            writeOutput(context.out, line(event, context.isColoured));
        });
        return exitSuccess;
    }
    auto document = jsonDocument("log");
    document["file"] = safeText(timeline.path());
    document["first"] = jsonTime(timeline.first());
    document["last"] = jsonTime(timeline.last());
    document["samples"] = timeline.samples();
    document["problem"] = textOrNull(safeText(timeline.damage()));
    JsonListWriter list(context.out, document, "events");
    log.read(timeline, range.from, range.until,
             [&](CaptureEvent const& event) { list.add(jsonEvent(event)); });
    list.end();
    return exitSuccess;
}

} // namespace qel::tools
