// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ListCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "inspect/naming/PointFinder.h"

#include <CLI/App.hpp>

#include <optional>

namespace qel::tools {

namespace {

enum ListLayout : std::size_t { ListedPoint, ListedValue };

void addLines(TextTable& table, PointFacts const& point, std::vector<ValueFacts> const& values,
              std::uint64_t now) {
    table.add(ListedPoint, {shm::svidText(point.svid),
                            point.path,
                            point.type,
                            {shm::stateName(point.state), stateStyle(point.state)}});
    for (auto const& value : values) {
        auto const style = stateStyle(value.state);
        table.add(ListedValue, {"  " + shm::svidText(value.svid),
                                value.name,
                                {value.text, style},
                                {shm::stateName(value.state), style},
                                momentText(value.at),
                                ageText(value.at, now)});
    }
}

/// A value by itself, with its point on the same line.
void addSingleValue(TextTable& table, PointFacts const& point, ValueFacts const& value, std::uint64_t now) {
    auto const style = stateStyle(value.state);
    table.add(ListedValue, {momentText(value.at),
                            point.path,
                            value.name,
                            {value.text, style},
                            {shm::stateName(value.state), style},
                            ageText(value.at, now)});
}

Json jsonPointWith(PointFacts const& point, std::vector<ValueFacts> const& values, std::uint64_t now) {
    auto document = jsonPoint(point, now);
    document["values"] = jsonValues(values, now);
    return document;
}

} // namespace

CLI::App& ListCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    if (verb_ == Verb::List) {
        return *app.add_subcommand("list", "Print all points with their values");
    }
    auto& verb = *app.add_subcommand("get", "Print one point with its values, or one value");
    verb.add_option("POINT", point_, "Path or sensor id of the point, or sensor id of the value")
        ->required()
        ->type_name("");
    verb.add_option("KEY", key_, "Key of the value, as a number or a name (0x13, \"active power\")")
        ->type_name("");
    return verb;
}

int ListCommand::show(RegionView const& view, CommandContext const& context) {
    if (verb_ == Verb::List) {
        list(view, context);
    } else {
        get(view, context);
    }
    return exitSuccess;
}

void ListCommand::list(RegionView const& view, CommandContext const& context) const {
    auto const& image = view.input.image;
    TextTable table;
    auto points = Json::array();
    for (auto const& node : view.tree.nodes()) {
        auto const point = pointFacts(image, view.tree, node);
        auto const values = valuesOf(image, view.tree, node);
        if (context.options.isJson) {
            points.push_back(jsonPointWith(point, values, view.input.now));
        } else {
            addLines(table, point, values, view.input.now);
        }
    }
    if (context.options.isJson) {
        auto document = jsonDocument("list", view.input, view.warnings);
        document["points"] = points;
        printJson(context.out, document);
    } else {
        table.print(context.out, context.isColoured);
    }
}

void ListCommand::get(RegionView const& view, CommandContext const& context) const {
    auto const& image = view.input.image;
    auto const now = view.input.now;
    inspect::PointFinder const finder(image, view.tree);
    auto const index = finder.point(point_);
    auto const& node = view.tree.nodes().at(index);
    auto const keyInId = key_.empty() ? inspect::keyInText(point_) : std::nullopt;
    auto const key = keyInId ? std::to_string(*keyInId) : key_;
    auto const point = pointFacts(image, view.tree, node);
    auto const values = key.empty() ? valuesOf(image, view.tree, node)
                                    : std::vector{valueFacts(image, node, finder.value(index, key))};
    if (context.options.isJson) {
        auto document = jsonDocument("get", view.input, view.warnings);
        document["point"] = jsonPointWith(point, values, now);
        printJson(context.out, document);
        return;
    }
    TextTable table;
    if (key.empty()) {
        addLines(table, point, values, now);
    } else {
        addSingleValue(table, point, values.front(), now);
    }
    table.print(context.out, context.isColoured);
}

} // namespace qel::tools
