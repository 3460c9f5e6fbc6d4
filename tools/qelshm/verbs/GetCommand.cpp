// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/GetCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/Age.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/PointLines.h"

#include "inspect/naming/PointFinder.h"
#include "inspect/naming/StateText.h"

#include <CLI/App.hpp>

#include <optional>

namespace qel::tools {

namespace {

/// The whole line of a value by itself, the point in front.
void addSingleValue(TextTable& table, PointFacts const& point, ValueFacts const& value, std::uint64_t now) {
    auto const style = stateStyle(value.state);
    table.add(0, {momentText(value.at),
                  point.path,
                  value.name,
                  {value.text, style},
                  {inspect::stateText(value.state), style},
                  ageText(value.at, now)});
}

} // namespace

CLI::App& GetCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("get", "Print one point with its values, or one value");
    verb.add_option("POINT", point_, "Path or sensor id of the point, or sensor id of the value")
        ->required()
        ->type_name("");
    verb.add_option("KEY", key_, "Value of the point, by number or name (0x13, \"active power\")")
        ->type_name("");
    return verb;
}

int GetCommand::show(RegionView const& view, CommandContext const& context) {
    auto const& image = view.input.image;
    auto const now = view.input.now;
    inspect::PointFinder const finder(image, view.tree);
    auto const index = finder.point(point_);
    auto const& node = view.tree.nodes().at(index);
    auto const point = pointFacts(image, view.tree, node);
    auto const keyInId = key_.empty() ? inspect::keyInText(point_) : std::nullopt;
    auto const key = keyInId ? std::to_string(*keyInId) : key_;

    TextTable table;
    auto document = jsonDocument("get", view.input, view.warnings);
    document["point"] = jsonPoint(point, now);
    if (key.empty()) {
        auto const values = valuesOf(image, view.tree, node);
        addPointLines(table, point, values, now);
        document["point"]["values"] = jsonValues(values, now);
    } else {
        auto const value = valueFacts(image, node, finder.value(index, key));
        addSingleValue(table, point, value, now);
        document["point"]["values"] = jsonValues({value}, now);
    }
    if (context.options.isJson) {
        printJson(context.out, document);
    } else {
        table.print(context.out, context.hasColor);
    }
    return exitSuccess;
}

} // namespace qel::tools
