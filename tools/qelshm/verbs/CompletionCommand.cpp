// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CompletionCommand.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/terminal/TextTable.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

namespace qel::tools {

namespace {

// Arguments by whose names a verb takes points or files.
constexpr std::string_view pointArgument = "POINT";
constexpr std::string_view fileArgument = "FILE";

constexpr char const* header = "# bash completion for qelshm; made by \"qelshm completion bash\"\n\n";

// Points come from the image that the line names, at the time of completion.
constexpr char const* beforeWords = R"bash(_qelshm() {
    local word=${COMP_WORDS[COMP_CWORD]} before='' verb='' image=() index
    COMPREPLY=()
    [ "$COMP_CWORD" -eq 0 ] || before=${COMP_WORDS[COMP_CWORD - 1]}
    for ((index = 1; index < COMP_CWORD; index++)); do
        case ${COMP_WORDS[index]} in
        --image)
            image=(--image "${COMP_WORDS[index + 1]}")
            ((++index))
            ;;
        --*) _qelshm_takes_value "$verb" "${COMP_WORDS[index]}" && ((++index)) ;;
        *) [ -n "$verb" ] || verb=${COMP_WORDS[index]} ;;
        esac
    done
    case $before in
    --image)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --color)
        mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$word")
        return
        ;;
    esac
    if _qelshm_takes_value "$verb" "$before"; then
        return
    fi
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_qelshm_options "$verb")" -- "$word")
        return
    fi
)bash";

constexpr char const* afterWords = R"bash(}

complete -o bashdefault -F _qelshm qelshm
)bash";

bool isShown(CLI::Option const& option) {
    return !option.get_group().empty() && !option.get_lnames().empty();
}

/// The options of an app as words, "--json --color"; if wanted, only those that take a value.
std::string optionWords(CLI::App const& app, bool takingValue) {
    std::string words;
    for (auto const* const option : app.get_options()) {
        if (isShown(*option) && (!takingValue || option->get_items_expected_max() > 0)) {
            words.append(words.empty() ? "" : " ").append("--").append(option->get_lnames().front());
        }
    }
    return words;
}

bool hasArgument(CLI::App const& app, std::string_view name) {
    auto const options = app.get_options();
    return std::any_of(options.begin(), options.end(), [&](CLI::Option const* option) {
        return option->get_positional() && option->get_name(true).find(name) != std::string::npos;
    });
}

using Verbs = std::vector<CLI::App const*>;

/// A function that prints words by verb.
void printOptions(std::ostream& out, CLI::App const& app, Verbs const& verbs) {
    out << "_qelshm_options() {\n    echo '" << optionWords(app, false) << "'\n    case $1 in\n";
    for (auto const* const verb : verbs) {
        out << "    " << verb->get_name() << ") echo '" << optionWords(*verb, false) << "' ;;\n";
    }
    out << "    esac\n}\n\n";
}

void printTakesValue(std::ostream& out, CLI::App const& app, Verbs const& verbs) {
    out << "_qelshm_takes_value() {\n    local options='" << optionWords(app, true) << "'\n    case $1 in\n";
    for (auto const* const verb : verbs) {
        auto const words = optionWords(*verb, true);
        if (!words.empty()) {
            out << "    " << verb->get_name() << ") options+=' " << words << "' ;;\n";
        }
    }
    out << "    esac\n    [[ -n $2 && \" $options \" == *\" $2 \"* ]]\n}\n\n";
}

void printWords(std::ostream& out, Verbs const& verbs) {
    std::string names;
    std::string points;
    std::string files;
    auto const append = [](std::string& list, char const* separator, std::string const& name) {
        list.append(list.empty() ? "" : separator).append(name);
    };
    for (auto const* const verb : verbs) {
        append(names, " ", verb->get_name());
        if (hasArgument(*verb, pointArgument)) {
            append(points, " | ", verb->get_name());
        }
        if (hasArgument(*verb, fileArgument)) {
            append(files, " | ", verb->get_name());
        }
    }
    out << "    case $verb in\n    '') mapfile -t COMPREPLY < <(compgen -W '" << names
        << "' -- \"$word\") ;;\n    " << points
        << ") mapfile -t COMPREPLY < <(compgen -W \"$(\"${COMP_WORDS[0]}\" \"${image[@]}\" tree --paths "
           "2>/dev/null)\" "
           "-- \"$word\") ;;\n    "
        << files
        << ") mapfile -t COMPREPLY < <(compgen -f -- \"$word\") ;;\n    completion) mapfile -t COMPREPLY < "
        << "<(compgen -W 'bash' -- \"$word\") ;;\n    esac\n";
}

} // namespace

CLI::App& CompletionCommand::define(CLI::App& app, OptionalOptions const& optional) {
    app_ = &app;
    auto& verb = *app.add_subcommand("completion", "Print a shell completion script");
    verb.add_option("SHELL", shell_, "Shell: bash")
        ->required()
        ->check(CLI::IsMember(std::set<std::string>{"bash"}).description(""))
        ->type_name("");
    for (auto* const option : {optional.image, optional.wait, optional.json}) {
        verb.excludes(option);
    }
    return verb;
}

int CompletionCommand::run(CommandContext const& context) {
    auto const verbs = app_->get_subcommands({});
    std::ostringstream out;
    out << header;
    printOptions(out, *app_, verbs);
    printTakesValue(out, *app_, verbs);
    out << beforeWords;
    printWords(out, verbs);
    out << afterWords;
    writeOutput(context.out, out.str());
    return exitSuccess;
}

} // namespace qel::tools
