// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ListCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/Svid.h"
#include "region/SvidParts.h"

#include <CLI/App.hpp>

#include <utility>

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

/// A point that is shown, with those of its values that are.
struct ShownPoint {
    PointFacts point;
    std::vector<ValueFacts> values;
};

/// The points that are selected as a whole or with some of their values.
std::vector<ShownPoint> pointsOf(RegionView const& view, std::vector<std::string> const& names) {
    auto const& image = view.input.image;
    NameSelection const selection(names, image, view.tree);
    std::vector<ShownPoint> points;
    for (auto const& node : view.tree.nodes()) {
        auto values = valuesOf(image, view.tree, node, selection);
        if (!values.empty() || selection.hasPoint(image.region().points[node.pos].guid)) {
            points.push_back({pointFacts(image, view.tree, node), std::move(values)});
        }
    }
    return points;
}

Json jsonPointWith(PointFacts const& point, std::vector<ValueFacts> const& values, std::uint64_t now) {
    auto document = jsonPoint(point, now);
    document["values"] = jsonValues(values, now);
    return document;
}

Json jsonPoints(std::vector<ShownPoint> const& points, std::uint64_t now) {
    auto list = Json::array();
    for (auto const& each : points) {
        list.push_back(jsonPointWith(each.point, each.values, now));
    }
    return list;
}

} // namespace

CLI::App& ListCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    if (verb_ == Verb::List) {
        auto& verb = *app.add_subcommand("list", "Print all points with their values");
        verb.footer("Examples:\n"
                    "  qelshm list\n"
                    "  qelshm list 'unit1/**:active-power'");
        verb.add_option("NAME", names_, "Points and values to print; everything by default")->type_name("");
        return verb;
    }
    auto& verb = *app.add_subcommand("get", "Print points with their values, or values");
    verb.footer("Examples:\n"
                "  qelshm get unit1/inlet1:active-power\n"
                "  qelshm get 'unit1/**:*power'");
    verb.add_option("NAME", name_,
                    "Path or sensor id of a point, or name or sensor id of a value; * ? [] and ** "
                    "stand for several")
        ->required()
        ->type_name("");
    verb.add_option("KEY", key_,
                    "Key of the value if NAME is a point, as a number or a name (0x13, \"active power\")")
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
    auto const selected = pointsOf(view, names_);
    if (context.options.isJson) {
        auto document = jsonDocument("list", view.input, view.warnings);
        document["points"] = jsonPoints(selected, view.input.now);
        printJson(context.out, document);
        return;
    }
    TextTable table;
    for (auto const& each : selected) {
        addLines(table, each.point, each.values, view.input.now);
    }
    table.print(context.out, context.isColoured);
}

void ListCommand::get(RegionView const& view, CommandContext const& context) const {
    auto const name = nameToGet();
    auto const now = view.input.now;
    auto const selected = pointsOf(view, {name});
    if (context.options.isJson) {
        auto document = jsonDocument("get", view.input, view.warnings);
        document["point"] =
            hasWildcards(name) ? Json() : jsonPointWith(selected.front().point, selected.front().values, now);
        document["points"] = jsonPoints(selected, now);
        printJson(context.out, document);
        return;
    }
    bool const areValues = partsOf(name).key || inspect::keyInText(name);
    TextTable table;
    for (auto const& each : selected) {
        if (!areValues) {
            addLines(table, each.point, each.values, now);
            continue;
        }
        for (auto const& value : each.values) {
            addSingleValue(table, each.point, value, now);
        }
    }
    table.print(context.out, context.isColoured);
}

/// Of "POINT KEY" the name that means the same.
std::string ListCommand::nameToGet() const {
    if (key_.empty()) {
        return name_;
    }
    if (partsOf(name_).key) {
        throw inspect::NotFoundError('"' + name_ + "\" names a value already; \"" + key_ +
                                     "\" is one too many");
    }
    auto const id = inspect::parseSvid(name_); // a key given beside the id of a value wins
    return (id ? shm::svidText(shm::pointSvid(*id)) : name_) + ':' + key_;
}

} // namespace qel::tools
