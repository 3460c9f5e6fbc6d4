// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/FindCommand.h"

#include "tools/common/Durations.h"
#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/AgeText.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/terminal/Utf8Text.h"
#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "format/HexText.h"
#include "format/StateName.h"

#include <CLI/App.hpp>
#include <CLI/Error.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

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

/// Whether a text is a name as NameSelection takes it, not a part of one.
bool isName(std::string_view text) {
    return hasWildcards(text) || text.find(':') != std::string_view::npos;
}

/// Where a point matches; nowhere if the list is empty.
using PointFields = std::function<std::vector<std::string>(PointFacts const&)>;
using ValueFields = std::function<std::vector<std::string>(PointFacts const&, ValueFacts const&)>;

std::vector<Match> matchesOf(RegionView const& view, PointFields const& inPoint, ValueFields const& inValue) {
    std::vector<Match> matches;
    for (auto const& node : view.tree.nodes()) {
        auto const point = pointFacts(view.input.image, view.tree, node);
        if (auto fields = inPoint(point); !fields.empty()) {
            matches.push_back({point, std::nullopt, std::move(fields)});
        }
        for (auto const& value : valuesOf(view.input.image, view.tree, node)) {
            if (auto fields = inValue(point, value); !fields.empty()) {
                matches.push_back({point, value, std::move(fields)});
            }
        }
    }
    return matches;
}

std::vector<Match> matchesOfText(std::string_view text, RegionView const& view) {
    return matchesOf(
        view,
        [&](PointFacts const& point) {
            return fieldsWith(text, {{"path", point.path},
                                     {"svid", shm::svidText(point.svid)},
                                     {"type", point.type},
                                     {"state", std::string(shm::stateName(point.state))}});
        },
        [&](PointFacts const& /*point*/, ValueFacts const& value) {
            return fieldsWith(text, {{"svid", shm::svidText(value.svid)},
                                     {"name", value.name},
                                     {"state", std::string(shm::stateName(value.state))}});
        });
}

std::vector<Match> matchesOfName(std::string const& name, RegionView const& view) {
    NameSelection const selection({name}, view.input.image, view.tree);
    using Fields = std::vector<std::string>;
    return matchesOf(
        view,
        [&](PointFacts const& point) { return selection.hasPoint(point.svid) ? Fields{"path"} : Fields(); },
        [&](PointFacts const& point, ValueFacts const& value) {
            return selection.hasValue(point.svid, value.key) ? Fields{"name"} : Fields();
        });
}

/// Leaves the values that were delivered so long ago.
void keepOld(std::vector<Match>& matches, std::chrono::milliseconds age, std::uint64_t now) {
    auto const isOther = [&](Match const& match) {
        auto const actual = match.value ? ageOf(match.value->at, now) : std::nullopt;
        return !actual || *actual <= age.count();
    };
    matches.erase(std::remove_if(matches.begin(), matches.end(), isOther), matches.end());
    for (auto& match : matches) {
        match.fields.emplace_back("age");
    }
}

/// @param age of the value, "" for none
void addLine(TextTable& table, Match const& match, std::string const& age) {
    auto const& value = match.value;
    auto const state = value ? value->state : match.point.state;
    table.add(0, {shm::svidText(value ? value->svid : match.point.svid),
                  match.point.path,
                  value ? value->name : match.point.type,
                  {value ? value->text : std::string(), stateStyle(state)},
                  {shm::stateName(state), stateStyle(state)},
                  age});
}

Json jsonMatch(Match const& match, std::uint64_t now) {
    return {{"point", jsonPoint(match.point, now)},
            {"value", match.value ? jsonValue(*match.value, now) : Json()},
            {"in", match.fields}};
}

} // namespace

CLI::App& FindCommand::define(CLI::App& app, OptionalOptions const& /*optional*/) {
    constexpr std::chrono::hours longest(24 * 3660);
    auto& verb = *app.add_subcommand("find", "Search points and values");
    verb.footer("Examples:\n"
                "  qelshm find alarm\n"
                "  qelshm find --older-than 10s 'unit1/**:*power'");
    auto* const text = verb.add_option("TEXT", text_,
                                       "Part of a path, sensor id, key name, type or state; or a name with "
                                       "wildcards or a key")
                           ->type_name("");
    auto* const older = verb.add_option("--older-than", olderThan_,
                                        "Only values whose last delivery is older: 10, 10s, 5m, 2h")
                            ->check(durationUpTo(longest))
                            ->type_name("DURATION");
    verb.callback([text, older] {
        if (text->count() + older->count() == 0) {
            throw CLI::RequiredError("TEXT or --older-than");
        }
    });
    return verb;
}

int FindCommand::show(RegionView const& view, CommandContext const& context) {
    auto const now = view.input.now;
    auto matches = isName(text_) ? matchesOfName(text_, view) : matchesOfText(text_, view);
    if (text_.empty()) { // only the age matters
        for (auto& match : matches) {
            match.fields.clear();
        }
    }
    if (auto const age = parseDuration(olderThan_)) {
        keepOld(matches, *age, now);
    }
    if (context.options.isJson) {
        auto document = jsonDocument("find", view.input, view.warnings);
        auto& list = document["matches"] = Json::array();
        for (auto const& match : matches) {
            list.push_back(jsonMatch(match, now));
        }
        printJson(context.out, document);
    } else {
        TextTable table;
        for (auto const& match : matches) {
            addLine(table, match, olderThan_.empty() ? "" : ageText(match.value->at, now));
        }
        table.print(context.out, context.isColoured);
    }
    return matches.empty() ? exitFailure : exitSuccess;
}

} // namespace qel::tools
