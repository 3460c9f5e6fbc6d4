// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DiffCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/Names.h"
#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "inspect/compare/Difference.h"

#include <CLI/App.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <type_traits>
#include <utility>
#include <variant>

namespace qel::tools {

namespace {

using inspect::Difference;
using inspect::DifferenceSide;

/// What stands for the live object on the command line.
constexpr char const* live = "live";

RegionInput open(std::string const& name, CommandContext const& context) {
    auto input = name == live ? liveInput() : fileInput(name);
    input.now = context.options.now.value_or(input.now);
    requireOpened(input);
    return input;
}

template <typename Side, typename Wanted>
constexpr bool is = std::is_same_v<std::decay_t<Side>, Wanted>;

bool isSlot(inspect::DifferenceKind kind) {
    return kind == inspect::DifferenceKind::PointAdded || kind == inspect::DifferenceKind::PointRemoved ||
           kind == inspect::DifferenceKind::PointSlot;
}

std::string sideText(DifferenceSide const& side, Difference const& difference) {
    return std::visit(
        [&](auto const& content) -> std::string {
            using Side = decltype(content);
            if constexpr (is<Side, std::monostate>) {
                return "-";
            } else if constexpr (is<Side, bool>) {
                return content ? "yes" : "no";
            } else if constexpr (is<Side, double>) {
                return tav::ValueFormatter::str(difference.key.value_or(0), content, " ");
            } else if constexpr (is<Side, eStatus_Bits>) {
                return std::string(shm::stateName(content));
            } else if constexpr (is<Side, std::string>) {
                return content.empty() ? "top level" : content;
            } else {
                return (isSlot(difference.kind) ? "slot " : "") + std::to_string(content);
            }
        },
        side);
}

/// The shortest digits that identify the number.
std::string exactText(double number) {
    std::array<char, 32> text{};
    auto const result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

/// Both sides; numbers that look the same in their unit get all their digits.
std::pair<std::string, std::string> sideTexts(Difference const& difference) {
    std::pair<std::string, std::string> texts{sideText(difference.before, difference),
                                              sideText(difference.after, difference)};
    auto const* const before = std::get_if<double>(&difference.before);
    auto const* const after = std::get_if<double>(&difference.after);
    if (before != nullptr && after != nullptr && texts.first == texts.second) {
        texts = {exactText(*before), exactText(*after)};
    }
    return texts;
}

Style sideStyle(DifferenceSide const& side) {
    auto const* const state = std::get_if<eStatus_Bits>(&side);
    return state != nullptr ? stateStyle(*state) : Style::Plain;
}

Json sideJson(DifferenceSide const& side) {
    return std::visit(
        [](auto const& content) -> Json {
            using Side = decltype(content);
            if constexpr (is<Side, std::monostate>) {
                return nullptr;
            } else if constexpr (is<Side, double>) {
                return std::isfinite(content) ? Json(content) : Json();
            } else if constexpr (is<Side, eStatus_Bits>) {
                return static_cast<std::int32_t>(content);
            } else {
                return content;
            }
        },
        side);
}

Json jsonSide(DifferenceSide const& side, Difference const& difference) {
    return {{"value", sideJson(side)}, {"text", sideText(side, difference)}};
}

Json jsonDifference(Difference const& difference) {
    return {{"kind", differenceName(difference.kind)},
            {"svid", shm::svidText(difference.svid)},
            {"path", textOrNull(difference.path)},
            {"key", difference.key ? Json(*difference.key) : Json()},
            {"name", difference.key ? Json(shm::keyName(*difference.key)) : Json()},
            {"before", jsonSide(difference.before, difference)},
            {"after", jsonSide(difference.after, difference)}};
}

} // namespace

CLI::App& DiffCommand::define(CLI::App& app, OptionalOptions const& optional) {
    auto& verb = *app.add_subcommand("diff", "Compare two images");
    verb.footer("Examples:\n"
                "  qelshm diff before.img after.img\n"
                "  qelshm diff before.img live");
    verb.add_option("FILE_A", before_, "Image file, or live for the live object")->required()->type_name("");
    verb.add_option("FILE_B", after_, "Image file, or live for the live object")->required()->type_name("");
    verb.excludes(optional.image);
    verb.excludes(optional.wait);
    return verb;
}

int DiffCommand::run(CommandContext const& context) {
    auto const before = open(before_, context);
    auto const after = open(after_, context);
    auto const found = inspect::differences(before.image, after.image);
    if (context.options.isJson) {
        auto document = jsonDocument("diff");
        document["before"] = jsonSource(before);
        document["after"] = jsonSource(after);
        auto& list = document["differences"] = Json::array();
        for (auto const& difference : found) {
            list.push_back(jsonDifference(difference));
        }
        printJson(context.out, document);
    } else {
        TextTable table;
        for (auto const& difference : found) {
            auto const [beforeText, afterText] = sideTexts(difference);
            table.add(0, {differenceName(difference.kind),
                          difference.path,
                          difference.key ? shm::keyName(*difference.key) : std::string(),
                          {beforeText, sideStyle(difference.before)},
                          {afterText, sideStyle(difference.after)}});
        }
        table.print(context.out, context.isColoured);
    }
    return found.empty() ? exitSuccess : exitFailure;
}

} // namespace qel::tools
