// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ListCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/PointLines.h"

#include <CLI/App.hpp>

namespace qel::tools {

CLI::App& ListCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    return *app.add_subcommand("list", "Print every point with its type, state and values");
}

int ListCommand::show(RegionView const& view, CommandContext const& context) {
    auto const& image = view.input.image;
    TextTable table;
    auto points = Json::array();
    for (auto const& node : view.tree.nodes()) {
        auto const point = pointFacts(image, view.tree, node);
        auto const values = valuesOf(image, view.tree, node);
        if (context.options.isJson) {
            points.push_back(jsonPoint(point, view.input.now));
            points.back()["values"] = jsonValues(values, view.input.now);
        } else {
            addPointLines(table, point, values, view.input.now);
        }
    }
    if (context.options.isJson) {
        auto document = jsonDocument("list", view.input, view.warnings);
        document["points"] = points;
        printJson(context.out, document);
    } else {
        table.print(context.out, context.hasColor);
    }
    return exitSuccess;
}

} // namespace qel::tools
