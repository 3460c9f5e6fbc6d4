// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CompleteCommand.h"

#include "tools/common/Choices.h"
#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "format/KeyTable.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/ValuePath.h"
#include "inspect/naming/ValuePattern.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <vector>

namespace qel::tools {

namespace {

using Lines = std::vector<std::string>;

Lines paths(RegionView const& view) {
    Lines lines;
    for (auto const& node : view.tree.nodes()) {
        lines.push_back(inspect::pointPath(view.input.image.region().points[node.pos].guid));
    }
    return lines;
}

/// The keys of the points that a name selects, each once.
Lines keysOf(std::string const& name, RegionView const& view) {
    Lines lines;
    auto const& region = view.input.image.region();
    try {
        inspect::ValuePattern const pattern(name);
        for (auto const& node : view.tree.nodes()) {
            if (!pattern.matchesPoint(region.points[node.pos].guid)) {
                continue;
            }
            for (auto const pos : view.tree.valuesOf(node)) {
                auto word = inspect::keyWord(region.values[pos].key);
                if (std::find(lines.begin(), lines.end(), word) == lines.end()) {
                    lines.push_back(std::move(word));
                }
            }
        }
    } catch (inspect::PatternError const&) {
        lines.clear(); // no name: nothing fits
    }
    return lines;
}

} // namespace

CLI::App& CompleteCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("complete", "Print candidates for completion scripts");
    verb.group(""); // hidden
    verb.add_option("KIND", kind_, "What to print")->required()->check(oneOf({"name", "key"}))->type_name("");
    verb.add_option("WORD", word_, "What was typed")->type_name("");
    return verb;
}

int CompleteCommand::show(RegionView const& view, CommandContext const& context) {
    auto const parts = partsOf(word_);
    Lines lines;
    if (kind_ == "key") {
        lines = keysOf(parts.point, view);
    } else if (!parts.key) {
        lines = paths(view);
    } else {
        for (auto const& key : keysOf(parts.point, view)) {
            lines.push_back(parts.point + ':' + key);
        }
    }
    TextTable table;
    for (auto const& line : lines) {
        table.add(0, {line});
    }
    table.print(context.out, false);
    return exitSuccess;
}

} // namespace qel::tools
