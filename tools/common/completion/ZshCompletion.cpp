// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/ZshCompletion.h"

#include "tools/common/completion/CommandLineModel.h"
#include "tools/common/completion/ScriptText.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>

namespace qel::tools {

namespace {

// In the texts below, @F@ stands for the program's name in functions, @P@ for the name itself and @context@ for the
// option that is passed on.
constexpr char const* printing = R"zsh(# What the program prints.
_@F@_printed() { # ARGUMENT...
    local -a command
    local context
    local -i index
    command=("${${(Q)line_words[1]}/#\~\//$HOME/}")
    index=${line_words[(I)@context@]}
    if (( index && index + 1 < line_current )); then
        context=$line_words[index+1]
    else
        context=${line_words[(R)@context@=*]#*=}
    fi
    [[ -z $context ]] || command+=(@context@ "${${(Q)context}/#\~\//$HOME/}")
    "${command[@]}" "$@" 2>/dev/null
}

)zsh";

constexpr char const* beginning = R"zsh(_@P@() {
    local curcontext=$curcontext state state_descr line ret=1
    typeset -A opt_args
    local -a line_words common verbs
    local -i line_current=CURRENT
    line_words=("${words[@]}")
    common=(
)zsh";

constexpr char const* verbReading =
    R"zsh(    _arguments -C $common '(-): :->verb' '(-)*:: :->arguments' && ret=0
    case $state in
    verb) _describe -t verbs verb verbs && ret=0 ;;
    arguments)
        curcontext=${curcontext%:*:*}:@P@-$words[1]:
        case $words[1] in
)zsh";

constexpr char const* ending = R"zsh(    return ret
}

if [[ $zsh_eval_context[-1] == loadautofunc ]]; then
    _@P@ "$@"
else
    compdef _@P@ @P@
fi
)zsh";

/// Text between the brackets or colons of what _arguments and _describe take.
std::string described(std::string text) {
    for (auto const* const special : {"\\", "[", "]", ":"}) {
        text = replaced(text, special, std::string("\\") + special);
    }
    return text;
}

bool hasBlank(std::string const& word) {
    return word.find(' ') != std::string::npos;
}

/// Whether _arguments needs a function for these candidates.
bool needsFunction(Candidates const& candidates) {
    auto const& words = candidates.words;
    return !candidates.printed.empty() || (candidates.areFiles && !words.empty()) ||
           std::any_of(words.begin(), words.end(), hasBlank);
}

std::string functionFor(ArgumentModel const& argument) {
    auto name = argument.name + (argument.candidates.areOfFirst ? "_of_first" : "");
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return "_@F@_" + name;
}

/// ":POINT:_qelshm_point"
std::string specOf(ArgumentModel const& argument) {
    auto const& candidates = argument.candidates;
    std::string action = " ";
    if (needsFunction(candidates)) {
        action = functionFor(argument);
    } else if (candidates.areFiles) {
        action = "_files";
    } else if (!candidates.words.empty()) {
        action = '(' + joined(candidates.words) + ')';
    }
    return ':' + described(argument.name) + ':' + action;
}

/// The specifications of an option, one for each of its names.
std::vector<std::string> specsOf(OptionModel const& option) {
    bool const isRepeatable = option.argument && option.argument->isRepeatable;
    auto const rest =
        '[' + described(option.description) + ']' + (option.argument ? specOf(*option.argument) : "");
    auto const longName = "--" + option.name + (option.argument ? "=" : "");
    if (option.shortName.empty()) {
        return {(isRepeatable ? "*" : "") + longName + rest};
    }
    auto const either = isRepeatable ? "*" : "(-" + option.shortName + " --" + option.name + ')';
    return {either + '-' + option.shortName + rest, either + longName + rest};
}

std::vector<std::string> argumentSpecs(CommandModel const& command) {
    std::vector<std::string> specs;
    for (std::size_t place = 0; place < command.arguments.size(); ++place) {
        auto const& argument = command.arguments[place];
        specs.push_back((argument.isRepeatable ? "*" : std::to_string(place + 1)) + specOf(argument));
    }
    return specs;
}

std::vector<std::string> optionSpecs(CommandModel const& command) {
    std::vector<std::string> specs;
    for (auto const& option : command.options) {
        auto const names = specsOf(option);
        specs.insert(specs.end(), names.begin(), names.end());
    }
    return specs;
}

char const* passedText(PassedWord passed) {
    switch (passed) {
    case PassedWord::None:
        break;
    case PassedWord::Current:
        return R"( "${(Q)PREFIX}")";
    case PassedWord::Previous:
        return R"( "${(Q)line[1]}")";
    }
    return "";
}

void printFunction(std::ostream& out, ArgumentModel const& argument) {
    auto const& candidates = argument.candidates;
    out << functionFor(argument) << "() {\n    local ret=1\n    local -a candidates\n    candidates=(";
    for (auto const& word : candidates.words) {
        out << ' ' << quotedForShell(word);
    }
    out << " )\n";
    if (!candidates.printed.empty()) {
        out << "    candidates+=(${(f)\"$(_@F@_printed "
            << (candidates.areOfFirst ? R"(@context@ "${${(Q)line[1]}/#\~\//$HOME/}" )" : "")
            << candidates.printed << passedText(candidates.passed) << ")\"})\n";
    }
    out << "    compadd \"$@\" -a candidates && ret=0\n";
    if (candidates.areFiles) {
        out << "    _files && ret=0\n";
    }
    out << "    return ret\n}\n\n";
}

/// The functions of all arguments that need one, each once.
void printFunctions(std::ostream& out, CommandLineModel const& model) {
    std::vector<ArgumentModel> all;
    auto const collect = [&](CommandModel const& command) {
        all.insert(all.end(), command.arguments.begin(), command.arguments.end());
        for (auto const& option : command.options) {
            if (option.argument) {
                all.push_back(*option.argument);
            }
        }
    };
    collect(model.program);
    std::for_each(model.verbs.begin(), model.verbs.end(), collect);
    std::set<std::string> printed;
    for (auto const& argument : all) {
        if (needsFunction(argument.candidates) && printed.insert(functionFor(argument)).second) {
            printFunction(out, argument);
        }
    }
}

void printSpecs(std::ostream& out, char const* indent, std::vector<std::string> const& specs) {
    for (auto const& spec : specs) {
        out << indent << quotedForShell(spec) << '\n';
    }
}

void printVerbs(std::ostream& out, CommandLineModel const& model) {
    out << "    verbs=(\n";
    for (auto const& verb : model.verbs) {
        out << "        " << quotedForShell(verb.name + ':' + described(verb.description)) << '\n';
    }
    out << "    )\n" << verbReading;
    for (auto const& verb : model.verbs) {
        out << "        " << verb.name << ")\n            _arguments $common";
        for (auto const& specs : {optionSpecs(verb), argumentSpecs(verb)}) {
            for (auto const& spec : specs) {
                out << " \\\n                " << quotedForShell(spec);
            }
        }
        out << " && ret=0\n            ;;\n";
    }
    out << "        esac\n        ;;\n    esac\n";
}

} // namespace

std::string zshCompletion(CommandLineModel const& model) {
    std::ostringstream out;
    out << "#compdef " << model.program.name << "\n# zsh completion for " << model.program.name
        << "; made by \"" << model.program.name << ' ' << model.source << "\"\n\n";
    if (!model.context.empty()) {
        out << printing;
    }
    printFunctions(out, model);
    out << beginning;
    printSpecs(out, "        ", optionSpecs(model.program));
    out << "    )\n";
    if (model.verbs.empty()) {
        out << "    _arguments $common";
        for (auto const& spec : argumentSpecs(model.program)) {
            out << ' ' << quotedForShell(spec);
        }
        out << " && ret=0\n";
    } else {
        printVerbs(out, model);
    }
    out << ending;
    auto const named = replaced(replaced(out.str(), "@F@", model.functionName()), "@P@", model.program.name);
    return replaced(named, "@context@", "--" + model.context);
}

} // namespace qel::tools
