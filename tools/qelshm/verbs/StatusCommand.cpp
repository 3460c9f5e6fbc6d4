// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/StatusCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/StateName.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/naming/LedText.h"

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

/// @param findings of the object
void printText(inspect::RegionStatus const& status, RegionInput const& input,
               inspect::Findings const& findings, CommandContext const& context) {
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
    for (auto const& finding : findings) {
        add("finding", {findingText(finding), Style::Alarm});
    }
    if (hasContent(status)) {
        add("size", {usedOf(status.size, shm::REGION_SIZE) + " bytes"});
        add("version", {std::to_string(status.version)});
        add("points", {usedOf(status.pointsUsed, shm::MP_COUNT)});
        add("values", {usedOf(status.valuesUsed, shm::MV_COUNT)});
        add("global state", {shm::stateName(status.globalState), stateStyle(status.globalState)});
        add("status LED", {inspect::ledText(status.globalState)});
        add("last delivery", {newestText(status, input.now)});
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

/// The members of the content; null when there is none.
Json jsonContent(inspect::RegionStatus const& status, std::uint64_t now) {
    if (!hasContent(status)) {
        return nullptr;
    }
    return {{"size", status.size},
            {"version", status.version},
            {"points", jsonUse(status.pointsUsed, shm::MP_COUNT)},
            {"values", jsonUse(status.valuesUsed, shm::MV_COUNT)},
            {"globalState", jsonState(status.globalState)},
            {"led", inspect::ledText(status.globalState)},
            {"lastDelivery", jsonMoment(status.newest, now)}};
}

} // namespace

CLI::App& StatusCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    constexpr double longestAge = 1e9;
    auto& verb = *app.add_subcommand("status", "Print the condition and use of the region");
    verb.add_option("--max-age", maxAge_, "Report the region as silent if its newest delivery is older")
        ->check(CLI::Range(0.0, longestAge).description(""))
        ->type_name("SECONDS");
    return verb;
}

int StatusCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    std::optional<std::chrono::milliseconds> maxAge;
    if (maxAge_) {
        maxAge = secondsAs<std::chrono::milliseconds>(*maxAge_);
    }
    auto const status = inspect::regionStatus(input.source, input.image, input.now, maxAge);
    auto const findings = objectFindings(input);
    auto const problems = treeProblems(input.image, inspect::PointTree(input.image));
    for (auto const& problem : problems) {
        context.tell("warning: " + problem);
    }
    if (context.options.isJson) {
        auto document = jsonDocument("status", input, problems);
        document["condition"] = inspect::conditionName(status.condition);
        document["problem"] = textOrNull(inspect::openingProblem(status.source));
        document["object"] = jsonObject(status, findings);
        document["content"] = jsonContent(status, input.now);
        printJson(context.out, document);
    } else {
        printText(status, input, findings, context);
    }
    bool const isWell =
        status.condition == inspect::Condition::Active && problems.empty() && findings.empty();
    return isWell ? exitSuccess : exitFailure;
}

} // namespace qel::tools
