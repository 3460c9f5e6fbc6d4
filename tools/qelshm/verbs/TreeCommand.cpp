// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/TreeCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "format/StateName.h"
#include "inspect/naming/PointPath.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <ostream>

namespace qel::tools {

namespace {

enum Layout : std::size_t { PointLine, ValueLine };

std::string indent(std::uint32_t depth) {
    return std::string((depth - 1) * std::size_t{2}, ' ');
}

void addPoint(TextTable& table, PointFacts const& point) {
    table.add(PointLine, {indent(point.depth) + point.path,
                          point.kind,
                          point.type,
                          {shm::stateName(point.state), stateStyle(point.state)}});
}

void addValue(TextTable& table, ValueFacts const& value, std::uint32_t depth, std::uint64_t now) {
    auto const style = stateStyle(value.state);
    table.add(ValueLine, {indent(depth + 1) + value.name,
                          {value.text, style},
                          {shm::stateName(value.state), style},
                          ageText(value.at, now)});
}

/// @param values of the node, that are selected
bool isShown(inspect::Image const& image, inspect::PointNode const& node,
             std::vector<ValueFacts> const& values, NameSelection const& selection) {
    return !values.empty() || selection.hasPoint(image.region().points[node.pos].guid);
}

} // namespace

CLI::App& TreeCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("tree", "Print the points as a tree");
    verb.footer("Examples:\n"
                "  qelshm tree --values --depth 2\n"
                "  qelshm tree 'unit1/inlet1/**' --values");
    verb.add_option("NAME", names_, "Points and values to print; everything by default")->type_name("");
    auto* const values = verb.add_flag("--values", hasValues_, "Print the values, too");
    verb.add_option("--depth", depth_, "Maximum depth, 1 to 800")
        ->check(CLI::Range(1U, shm::MP_COUNT).description(""))
        ->type_name("N");
    verb.add_flag("--paths", arePaths_, "Print only the paths")->excludes(values)->excludes(optional.json);
    return verb;
}

int TreeCommand::show(RegionView const& view, CommandContext const& context) {
    if (context.options.isJson) {
        printDocument(view, context);
    } else {
        printText(view, context);
    }
    return exitSuccess;
}

void TreeCommand::printText(RegionView const& view, CommandContext const& context) const {
    auto const& image = view.input.image;
    NameSelection const selection(names_, image, view.tree);
    TextTable table;
    for (auto const& node : view.tree.nodes()) {
        auto const values = valuesOf(image, view.tree, node, selection);
        if (node.depth > depth_ || !isShown(image, node, values, selection)) {
            continue;
        }
        auto const point = pointFacts(image, view.tree, node);
        if (arePaths_) {
            table.add(PointLine, {point.path});
            continue;
        }
        addPoint(table, point);
        for (auto const& value : values) {
            if (hasValues_) {
                addValue(table, value, node.depth, view.input.now);
            }
        }
    }
    table.print(context.out, context.isColoured);
}

void TreeCommand::printDocument(RegionView const& view, CommandContext const& context) const {
    auto const& image = view.input.image;
    NameSelection const selection(names_, image, view.tree);
    auto document = jsonDocument("tree", view.input, view.warnings);
    auto& points = document["points"] = Json::array();
    for (auto const& node : view.tree.nodes()) {
        auto const values = valuesOf(image, view.tree, node, selection);
        if (node.depth > depth_ || !isShown(image, node, values, selection)) {
            continue;
        }
        points.push_back(jsonPoint(pointFacts(image, view.tree, node), view.input.now));
        if (hasValues_) {
            points.back()["values"] = jsonValues(values, view.input.now);
        }
    }
    printJson(context.out, document);
}

} // namespace qel::tools
