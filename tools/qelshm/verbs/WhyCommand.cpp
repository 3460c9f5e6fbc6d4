// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WhyCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/Names.h"
#include "format/StateName.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/PointPath.h"
#include "inspect/why/Causes.h"
#include "inspect/why/ValueSummary.h"

#include <CLI/App.hpp>

namespace qel::tools {

namespace {

using inspect::Cause;
using inspect::Causes;
using inspect::CauseStep;

enum Layout : std::size_t { HeadLine, CauseLine, StepLine };

Cell stateCell(eStatus_Bits state) {
    return {shm::stateName(state), stateStyle(state)};
}

std::string keyText(Cause const& cause) {
    return cause.key ? shm::keyName(*cause.key) : "own state";
}

std::string lostText(std::size_t count) {
    return std::to_string(count) +
           (count == 1 ? " value is Lost, which does not count" : " values are Lost, which does not count");
}

/// @param lost how many values are Lost
void printText(std::string const& subject, Causes const& causes, std::size_t lost, RegionView const& view,
               CommandContext const& context) {
    TextTable table;
    if (causes.causes.empty()) {
        table.add(HeadLine, {subject + " is On"});
    } else {
        table.add(HeadLine, {(subject + " is ").append(shm::stateName(causes.state))});
    }
    if (causes.propagated != causes.state) {
        table.add(HeadLine, {std::string("stored state ")
                                 .append(shm::stateName(causes.state))
                                 .append("; propagation results in ")
                                 .append(shm::stateName(causes.propagated))});
    }
    if (lost != 0) {
        table.add(HeadLine, {{lostText(lost), stateStyle(eStatus_Lost)}});
    }
    for (auto const& cause : causes.causes) {
        table.add(CauseLine, {cause.path,
                              keyText(cause),
                              {cause.valueText, stateStyle(cause.state)},
                              stateCell(cause.state),
                              ageText(cause.at, view.input.now)});
        for (auto const& step : cause.chain) {
            table.add(StepLine, {"  " + step.path, stateCell(step.state),
                                 std::string(ruleText(step.rule)) +
                                     (step.isShown ? "" : " (hidden by a stronger state)")});
        }
    }
    table.print(context.out, context.isColoured);
}

Json jsonStep(CauseStep const& step) {
    return {{"svid", shm::svidText(step.svid)},
            {"path", step.path},
            {"state", jsonState(step.state)},
            {"rule", ruleCode(step.rule)},
            {"shown", step.isShown}};
}

Json jsonCause(Cause const& cause, std::uint64_t now) {
    auto chain = Json::array();
    for (auto const& step : cause.chain) {
        chain.push_back(jsonStep(step));
    }
    return {{"svid", shm::svidText(cause.svid)},
            {"path", cause.path},
            {"key", cause.key ? Json(*cause.key) : Json()},
            {"name", cause.key ? Json(shm::keyName(*cause.key)) : Json()},
            {"text", textOrNull(cause.valueText)},
            {"state", jsonState(cause.state)},
            {"at", jsonMoment(cause.at, now)},
            {"chain", chain}};
}

} // namespace

CLI::App& WhyCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("why", "Explain why the unit or a point is not On");
    verb.footer("Examples:\n"
                "  qelshm why\n"
                "  qelshm why unit1/inlet1");
    verb.add_option("POINT", point_, "Path or sensor id; the whole unit by default")->type_name("");
    return verb;
}

int WhyCommand::show(RegionView const& view, CommandContext const& context) {
    auto const& image = view.input.image;
    std::string subject = "the unit";
    auto causes = inspect::globalCauses(image, view.tree, view.input.now);
    auto node = inspect::NO_NODE;
    if (!point_.empty()) {
        node = inspect::PointFinder(image, view.tree).point(point_);
        subject = inspect::pointPath(image.region().points[view.tree.nodes().at(node).pos].guid);
        causes = inspect::pointCauses(image, view.tree, node, view.input.now);
    }
    auto const lost = inspect::lostValues(image, view.tree, node);
    if (context.options.isJson) {
        auto document = jsonDocument("why", view.input, view.warnings);
        document["point"] = point_.empty() ? Json() : Json(subject);
        document["state"] = jsonState(causes.state);
        document["propagated"] = jsonState(causes.propagated);
        document["lostValues"] = lost;
        auto& list = document["causes"] = Json::array();
        for (auto const& cause : causes.causes) {
            list.push_back(jsonCause(cause, view.input.now));
        }
        printJson(context.out, document);
    } else {
        printText(subject, causes, lost, view, context);
    }
    return causes.causes.empty() ? exitSuccess : exitFailure;
}

} // namespace qel::tools
