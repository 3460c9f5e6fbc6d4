// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/CommandLineModel.h"

#include "tools/common/Choices.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>

namespace qel::tools {

namespace {

Candidates candidatesFor(CLI::Option& option, std::string const& verb, std::string const& name,
                         CandidatesByName const& known) {
    auto const ofVerb = verb + ' ' + name;
    for (auto const& key : {ofVerb, name}) {
        if (auto const found = known.find(key); found != known.end()) {
            return found->second;
        }
    }
    Candidates candidates;
    candidates.words = choicesOf(option);
    candidates.areFiles = name == "FILE" || name == "PATH";
    return candidates;
}

ArgumentModel argumentModel(CLI::Option& option, std::string const& verb, std::string const& name,
                            CandidatesByName const& known) {
    return {name, candidatesFor(option, verb, name, known), option.get_items_expected_max() > 1};
}

bool hasOption(CommandModel const& command, std::string const& name) {
    return std::any_of(command.options.begin(), command.options.end(),
                       [&](OptionModel const& option) { return option.name == name; });
}

CommandModel commandModel(CLI::App& app, CommandModel const& common, CandidatesByName const& known) {
    CommandModel command{app.get_name(), app.get_description(), {}, {}};
    for (auto* const option : app.get_options()) {
        if (option->get_positional()) {
            command.arguments.push_back(argumentModel(*option, command.name, option->get_name(true), known));
        } else if (!option->get_group().empty() && !option->get_lnames().empty() &&
                   !hasOption(common, option->get_lnames().front())) {
            auto const& shortNames = option->get_snames();
            OptionModel model{option->get_lnames().front(),
                              shortNames.empty() ? "" : shortNames.front(),
                              option->get_description(),
                              {}};
            if (option->get_items_expected_max() > 0) {
                model.argument = argumentModel(*option, command.name, option->get_type_name(), known);
            }
            command.options.push_back(std::move(model));
        }
    }
    return command;
}

} // namespace

std::string CommandLineModel::functionName() const {
    auto name = program.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

CommandLineModel commandLineModel(CLI::App& app, CandidatesByName const& candidates) {
    CommandLineModel model;
    model.program = commandModel(app, {}, candidates);
    for (auto* const verb : app.get_subcommands({})) {
        if (!verb->get_group().empty()) {
            model.verbs.push_back(commandModel(*verb, model.program, candidates));
        }
    }
    return model;
}

} // namespace qel::tools
