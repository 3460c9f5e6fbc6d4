// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/StatusCommand.h"

#include "tools/common/Durations.h"
#include "tools/common/ExitStatus.h"
#include "tools/common/Numbers.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/naming/LedText.h"
#include "inspect/naming/ValuePath.h"
#include "inspect/why/ValueSummary.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <chrono>

namespace qel::tools {

namespace {

Style conditionStyle(inspect::Condition condition) {
    return condition == inspect::Condition::Active ? Style::Good : Style::Alarm;
}

/// Whether there are bytes to report on.
bool hasContent(inspect::RegionStatus const& status) {
    return status.source.opening == inspect::Opening::Opened;
}

std::string usedOf(std::size_t used, std::uint32_t slots) {
    return std::to_string(used) + " of " + std::to_string(slots);
}

std::string newestText(inspect::RegionStatus const& status, std::uint64_t now) {
    auto const age = ageOf(status.newest, now);
    if (!age) {
        return momentText(status.newest);
    }
    return momentText(status.newest) + ", " + ageText(status.newest, now) + (*age < 0 ? "" : " ago");
}

std::string findingText(inspect::Finding const& finding) {
    return std::string(kindOf(finding.code).name) + ", found " + finding.found.text() + ", expected " +
           finding.expected.text();
}

std::string statesText(inspect::ValueSummary const& values) {
    return std::to_string(values.alarm) + " alarm, " + std::to_string(values.warning) + " warning, " +
           std::to_string(values.lost) + " lost, " + std::to_string(values.never) + " never delivered, " +
           std::to_string(values.stale) + " stale";
}

Style statesStyle(inspect::ValueSummary const& values) {
    if (values.alarm + values.lost != 0) {
        return Style::Alarm;
    }
    return values.warning + values.stale != 0 ? Style::Warning : Style::Plain;
}

std::string aheadText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " value has" : " values have") +
           " a time ahead of this machine's clock";
}

std::string oldestText(inspect::OldValue const& oldest, std::uint64_t now) {
    auto const age = ageOf(oldest.at, now);
    return inspect::valuePath(oldest.point, oldest.key) + ", " + ageText(oldest.at, now) +
           (age && *age >= 0 ? " ago" : "");
}

/// What is known of a region.
struct Report {
    inspect::RegionStatus status;
    inspect::Findings findings; ///< of the object
    inspect::ValueSummary values;
    std::chrono::milliseconds staleAfter;
};

void printText(Report const& report, RegionInput const& input, CommandContext const& context) {
    auto const& status = report.status;
    TextTable table;
    auto const add = [&](char const* name, Cell const& cell) {
        table.add(0, {name, cell});
    };
    add("condition", {inspect::conditionName(status.condition), conditionStyle(status.condition)});
    if (!hasContent(status)) {
        add("reason", {inspect::openingProblem(status.source)});
    }
    add("source", {sourceText(input)});
    if (auto const& object = status.source.object) {
        add("owner", {inspect::userName(object->uid) + ':' + inspect::groupName(object->gid)});
        add("mode", {inspect::modeText(object->mode)});
    }
    for (auto const& finding : report.findings) {
        add("finding", {findingText(finding), Style::Alarm});
    }
    if (hasContent(status)) {
        add("size", {usedOf(status.size, shm::REGION_SIZE) + " bytes"});
        add("version", {std::to_string(status.version)});
        add("points", {usedOf(status.pointsUsed, shm::MP_COUNT)});
        add("values", {usedOf(status.valuesUsed, shm::MV_COUNT)});
        add("value states", {statesText(report.values), statesStyle(report.values)});
        add("global state", {shm::stateName(status.globalState), stateStyle(status.globalState)});
        add("status LED", {inspect::ledText(status.globalState)});
        add("last delivery", {newestText(status, input.now)});
        if (report.values.oldest) {
            add("oldest value", {oldestText(*report.values.oldest, input.now)});
        }
        if (status.ahead != 0) {
            add("clock", {aheadText(status.ahead), Style::Warning});
        }
    }
    table.print(context.out, context.isColoured);
}

Json jsonUse(std::size_t used, std::uint32_t slots) {
    return {{"used", used}, {"slots", slots}};
}

Json jsonObject(inspect::RegionStatus const& status, inspect::Findings const& findings) {
    auto const& object = status.source.object;
    if (!object) {
        return nullptr;
    }
    return {{"owner", inspect::userName(object->uid)},
            {"group", inspect::groupName(object->gid)},
            {"mode", inspect::modeText(object->mode)},
            {"names", object->names},
            {"findings", jsonFindings(findings)}};
}

Json jsonStates(Report const& report) {
    auto const& values = report.values;
    return {{"alarm", values.alarm},       {"warning", values.warning},
            {"lost", values.lost},         {"never", values.never},
            {"stale", values.stale},       {"staleAfterMs", report.staleAfter.count()},
            {"ahead", report.status.ahead}};
}

Json jsonOldest(inspect::ValueSummary const& values, std::uint64_t now) {
    if (!values.oldest) {
        return nullptr;
    }
    auto const& oldest = *values.oldest;
    return {{"svid", shm::svidText(oldest.point | oldest.key)},
            {"path", inspect::valuePath(oldest.point, oldest.key)},
            {"at", jsonMoment(oldest.at, now)}};
}

/// The members of the content; null when there is none.
Json jsonContent(Report const& report, std::uint64_t now) {
    auto const& status = report.status;
    if (!hasContent(status)) {
        return nullptr;
    }
    return {{"size", status.size},
            {"version", status.version},
            {"points", jsonUse(status.pointsUsed, shm::MP_COUNT)},
            {"values", jsonUse(status.valuesUsed, shm::MV_COUNT)},
            {"globalState", jsonState(status.globalState)},
            {"led", inspect::ledText(status.globalState)},
            {"lastDelivery", jsonMoment(status.newest, now)},
            {"valueStates", jsonStates(report)},
            {"oldestValue", jsonOldest(report.values, now)}};
}

} // namespace

CLI::App& StatusCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    constexpr double longestAge = 1e9;
    auto& verb = *app.add_subcommand("status", "Print the condition and use of the region");
    verb.footer("Examples:\n"
                "  qelshm status --max-age 10\n"
                "  qelshm --json status");
    verb.add_option(
            "--max-age", maxAge_,
            "Report the region as silent if its newest delivery is older; also the age of stale values, " +
                secondsText(inspect::STALE_AFTER) + " by default")
        ->check(finiteBetween(0.0, longestAge))
        ->type_name("SECONDS");
    return verb;
}

int StatusCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    std::optional<std::chrono::milliseconds> maxAge;
    if (maxAge_) {
        maxAge = secondsAs<std::chrono::milliseconds>(*maxAge_);
    }
    auto const staleAfter = maxAge.value_or(inspect::STALE_AFTER);
    inspect::PointTree const tree(input.image);
    Report const report{inspect::regionStatus(input.source, input.image, input.now, maxAge),
                        objectFindings(input),
                        inspect::valueSummary(input.image, tree, input.now, staleAfter), staleAfter};
    auto const& status = report.status;
    auto const problems = treeProblems(input.image, tree);
    for (auto const& problem : problems) {
        context.tell("warning: " + problem);
    }
    if (context.options.isJson) {
        auto document = jsonDocument("status", input, problems);
        document["condition"] = inspect::conditionName(status.condition);
        document["problem"] = textOrNull(inspect::openingProblem(status.source));
        document["object"] = jsonObject(status, report.findings);
        document["content"] = jsonContent(report, input.now);
        printJson(context.out, document);
    } else {
        printText(report, input, context);
    }
    bool const isWell =
        status.condition == inspect::Condition::Active && problems.empty() && report.findings.empty();
    return isWell ? exitSuccess : exitFailure;
}

} // namespace qel::tools
