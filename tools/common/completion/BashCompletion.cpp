// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/BashCompletion.h"

#include "tools/common/completion/CommandLineModel.h"
#include "tools/common/completion/ScriptText.h"

#include <sstream>

namespace qel::tools {

namespace {

// In the texts below, @F@ stands for the name of the function and @context@ for the option that is passed on.
constexpr char const* offering =
    R"bash(# Offers the candidates that begin with the word, quoted unless the word opens a quotation.
@F@_offer() { # CANDIDATE...
    local candidate quoted
    for candidate; do
        printf -v quoted %q "$candidate"
        if [[ $word == [\"\']* ]]; then
            [[ $candidate != "${word:1}"* ]] || COMPREPLY+=("$candidate")
        elif [[ $quoted == "$word"* ]]; then
            COMPREPLY+=("$quoted")
        fi
    done
}

@F@_offer_files() {
    local file
    compopt -o filenames 2>/dev/null
    while IFS= read -r file; do
        COMPREPLY+=("$file")
    done < <(compgen -f -- "$word")
}

# Offers what the program prints.
@F@_offer_printed() { # ARGUMENT...
    local lines
    mapfile -t lines < <("${COMP_WORDS[0]/#\~\//$HOME/}" "${context[@]}" "$@" 2>/dev/null)
    @F@_offer "${lines[@]}"
}

)bash";

constexpr char const* reading = R"bash(@F@() {
    local words=() word='' cut='' verb='' pending='' given='' previous='' first='' place=0 index context=()
    COMPREPLY=()
    # A name with a colon comes as several words, of which only the last one will be replaced.
    for ((index = 0; index <= COMP_CWORD; index++)); do
        given=${COMP_WORDS[index]}
        if ((index > 1)) && [[ $given == : || ${COMP_WORDS[index - 1]} == : ]]; then
            words[${#words[@]} - 1]+=$given
        else
            words+=("$given")
        fi
    done
    word=${words[-1]}
    cut=${word%"${COMP_WORDS[COMP_CWORD]#:}"}
    for ((index = 1; index < ${#words[@]} - 1; index++)); do
        given=${words[index]}
        if [ "$given" = = ]; then
            continue # "--option=value" comes as three words
        elif [ -n "$pending" ]; then
            [ "$pending" != '@context@' ] || context=("$pending" "${given/#\~\//$HOME/}")
            pending=''
        elif [[ $given == -* ]]; then
            ! @F@_takes_value "$verb" "$given" || pending=$given
@verb@        else
            place=$((place + 1))
            previous=$given
            [ "$place" -ne 1 ] || first=$given
        fi
    done
    [ "$word" != = ] || word=''
    if [ -z "$pending" ] && [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(@F@_options "$verb")" -- "$word")
        return
    fi
)bash";

constexpr char const* verbReading = R"bash(        elif [ -z "$verb" ]; then
            verb=$given
)bash";

/// A function that prints the options of a verb.
void printOptions(std::ostream& out, CommandLineModel const& model) {
    out << "@F@_options() { # VERB\n    echo '" << joined(optionWords(model.program))
        << "'\n    case $1 in\n";
    for (auto const& verb : model.verbs) {
        if (auto const words = optionWords(verb); !words.empty()) {
            out << "    " << verb.name << ") echo '" << joined(words) << "' ;;\n";
        }
    }
    out << "    esac\n}\n\n";
}

void printTakesValue(std::ostream& out, CommandLineModel const& model) {
    out << "@F@_takes_value() { # VERB OPTION\n    local options='" << joined(valueOptionWords(model.program))
        << "'\n    case $1 in\n";
    for (auto const& verb : model.verbs) {
        if (auto const words = valueOptionWords(verb); !words.empty()) {
            out << "    " << verb.name << ") options+=' " << joined(words) << "' ;;\n";
        }
    }
    out << "    esac\n    [[ -n $2 && \" $options \" == *\" $2 \"* ]]\n}\n\n";
}

/// The word without what quotes it.
char const* passedText(PassedWord passed) {
    switch (passed) {
    case PassedWord::None:
        break;
    case PassedWord::Current:
        return R"( "${word//[\\\"\']/}")";
    case PassedWord::Previous:
        return R"( "${previous//[\\\"\']/}")";
    }
    return "";
}

/// A branch of the case over verb and option, or verb and place.
void printBranch(std::ostream& out, std::string const& pattern, Candidates const& candidates) {
    if (candidates.isEmpty()) {
        return;
    }
    out << "    " << pattern << ")\n";
    if (!candidates.words.empty()) {
        out << "        @F@_offer";
        for (auto const& word : candidates.words) {
            out << ' ' << quotedForShell(word);
        }
        out << '\n';
    }
    if (candidates.areOfFirst) {
        out << R"(        context=('@context@' "${first/#\~\//$HOME/}"))" << '\n';
    }
    if (!candidates.printed.empty()) {
        out << "        @F@_offer_printed " << candidates.printed << passedText(candidates.passed) << '\n';
    }
    if (candidates.areFiles) {
        out << "        @F@_offer_files\n";
    }
    out << "        ;;\n";
}

/// @param verb how the patterns begin; a quotation is open at the end
void printBranches(std::ostream& out, CommandModel const& command, std::string const& verb) {
    for (auto const& option : command.options) {
        if (option.argument) {
            printBranch(out, verb + " --" + option.name + '\'', option.argument->candidates);
        }
    }
    for (std::size_t place = 0; place < command.arguments.size(); ++place) {
        auto const& argument = command.arguments[place];
        printBranch(out, verb + (argument.isRepeatable ? " '[0-9]*" : ' ' + std::to_string(place) + '\''),
                    argument.candidates);
    }
}

void printCandidates(std::ostream& out, CommandLineModel const& model) {
    if (!model.verbs.empty()) {
        out << "    if [ -z \"$verb$pending\" ]; then\n        @F@_offer";
        for (auto const& verb : model.verbs) {
            out << ' ' << verb.name;
        }
        out << "\n        return\n    fi\n";
    }
    out << "    case \"$verb ${pending:-$place}\" in\n";
    printBranches(out, model.program, "*'");
    for (auto const& verb : model.verbs) {
        printBranches(out, verb, '\'' + verb.name);
    }
    out << "    esac\n    COMPREPLY=(\"${COMPREPLY[@]#\"$cut\"}\")\n}\n\n";
}

} // namespace

std::string bashCompletion(CommandLineModel const& model) {
    std::ostringstream out;
    out << "# bash completion for " << model.program.name << "; made by \"" << model.program.name << ' '
        << model.source << "\"\n\n";
    printOptions(out, model);
    printTakesValue(out, model);
    out << offering << replaced(reading, "@verb@", model.verbs.empty() ? "" : verbReading);
    printCandidates(out, model);
    out << "complete -o bashdefault -F @F@ " << model.program.name << '\n';
    auto const context = model.context.empty() ? "" : "--" + model.context;
    return replaced(replaced(out.str(), "@F@", '_' + model.functionName()), "@context@", context);
}

} // namespace qel::tools
