// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/FindCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/StateName.h"

#include <CLI/App.hpp>

#include <optional>
#include <string_view>

namespace qel::tools {

namespace {

struct Field {
    char const* name;
    std::string text;
};

struct Match {
    PointFacts point;
    std::optional<ValueFacts> value; ///< none when it is the point that matches
    std::vector<std::string> fields; ///< that contain the text
};

std::vector<std::string> fieldsWith(std::string_view text, std::vector<Field> const& fields) {
    std::vector<std::string> names;
    for (auto const& field : fields) {
        if (containsIgnoringCase(field.text, text)) {
            names.emplace_back(field.name);
        }
    }
    return names;
}

std::vector<Match> matchesOf(std::string_view text, RegionView const& view) {
    std::vector<Match> matches;
    for (auto const& node : view.tree.nodes()) {
        auto const point = pointFacts(view.input.image, view.tree, node);
        auto const inPoint = fieldsWith(text, {{"path", point.path},
                                               {"svid", shm::svidText(point.svid)},
                                               {"type", point.type},
                                               {"state", std::string(shm::stateName(point.state))}});
        if (!inPoint.empty()) {
            matches.push_back({point, std::nullopt, inPoint});
        }
        for (auto const& value : valuesOf(view.input.image, view.tree, node)) {
            auto const inValue = fieldsWith(text, {{"svid", shm::svidText(value.svid)},
                                                   {"name", value.name},
                                                   {"state", std::string(shm::stateName(value.state))}});
            if (!inValue.empty()) {
                matches.push_back({point, value, inValue});
            }
        }
    }
    return matches;
}

void addLine(TextTable& table, Match const& match) {
    auto const& value = match.value;
    auto const state = value ? value->state : match.point.state;
    table.add(0, {shm::svidText(value ? value->svid : match.point.svid),
                  match.point.path,
                  value ? value->name : match.point.type,
                  {value ? value->text : std::string(), stateStyle(state)},
                  {shm::stateName(state), stateStyle(state)}});
}

Json jsonMatch(Match const& match, std::uint64_t now) {
    return {{"point", jsonPoint(match.point, now)},
            {"value", match.value ? jsonValue(*match.value, now) : Json()},
            {"in", match.fields}};
}

} // namespace

CLI::App& FindCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    auto& verb = *app.add_subcommand("find", "Search points and values for a text");
    verb.add_option("TEXT", text_, "Part of a path, sensor id, key name, type or state")
        ->required()
        ->type_name("");
    return verb;
}

int FindCommand::show(RegionView const& view, CommandContext const& context) {
    auto const matches = matchesOf(text_, view);
    if (context.options.isJson) {
        auto document = jsonDocument("find", view.input, view.warnings);
        auto& list = document["matches"] = Json::array();
        for (auto const& match : matches) {
            list.push_back(jsonMatch(match, view.input.now));
        }
        printJson(context.out, document);
    } else {
        TextTable table;
        for (auto const& match : matches) {
            addLine(table, match);
        }
        table.print(context.out, context.isColoured);
    }
    return matches.empty() ? exitFailure : exitSuccess;
}

} // namespace qel::tools
