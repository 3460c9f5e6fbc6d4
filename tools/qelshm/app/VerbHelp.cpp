// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/VerbHelp.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace qel::tools {

namespace {

/// Gives access to what the library keeps to itself: the options that a verb refuses.
class Refusals : public CLI::App {
public:
    static std::set<CLI::Option*> const& of(CLI::App const& verb) {
        return verb.*&Refusals::exclude_options_;
    }
};

/// Leaves out what an option excludes: that is about other verbs.
class CommonOptions : public CLI::Formatter {
public:
    std::string make_option_opts(CLI::Option const* option) const override {
        auto const text = Formatter::make_option_opts(option);
        return text.substr(0, text.find(" Excludes:"));
    }
};

bool isVisible(CLI::Option const* option) {
    return option->nonpositional() && !option->get_group().empty();
}

std::vector<CLI::Option const*> ownOptions(CLI::App const& verb) {
    return verb.get_options(
        [&](CLI::Option const* option) { return isVisible(option) && option != verb.get_help_ptr(); });
}

std::vector<CLI::Option const*> commonOptions(CLI::App const& verb) {
    auto const& refused = Refusals::of(verb);
    auto const isRefused = [&](CLI::Option const* option) {
        return std::any_of(refused.begin(), refused.end(),
                           [&](CLI::Option const* each) { return each == option; });
    };
    return verb.get_parent()->get_options([&](CLI::Option const* option) {
        auto const needed = option->get_needs();
        bool const isUsable = !isRefused(option) && std::none_of(needed.begin(), needed.end(), isRefused);
        return isVisible(option) && isUsable && option->get_name() != "--version";
    });
}

} // namespace

std::string VerbHelp::make_help(CLI::App const* app, std::string name, CLI::AppFormatMode mode) const {
    if (app->get_parent() == nullptr) {
        return Formatter::make_help(app, std::move(name), mode);
    }
    auto const own = ownOptions(*app);
    return make_description(app) + make_usage(app, name) + make_positionals(app) +
           (own.empty() ? "" : make_group("Options", false, own)) +
           CommonOptions().make_group("Common options", false, commonOptions(*app)) + '\n' + make_footer(app);
}

} // namespace qel::tools
