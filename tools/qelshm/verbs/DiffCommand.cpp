// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DiffCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/DifferenceText.h"
#include "tools/qelshm/verbs/Json.h"

#include "format/HexText.h"
#include "format/Names.h"

#include <CLI/App.hpp>

namespace qel::tools {

namespace {

using inspect::Difference;

/// What stands for the live object on the command line.
constexpr char const* live = "live";

RegionInput open(std::string const& name, CommandContext const& context) {
    auto input = name == live ? liveInput() : fileInput(name);
    if (input.capture && !input.capture->damage.empty()) {
        context.tell("warning: " + input.capture->damage);
    }
    input.now = context.options.now.value_or(input.now);
    requireOpened(input);
    return input;
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
    verb.add_option("FILE_A", before_, "Image file, capture (its last sample), or live for the live object")
        ->required()
        ->type_name("");
    verb.add_option("FILE_B", after_, "Image file, capture (its last sample), or live for the live object")
        ->required()
        ->type_name("");
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
