// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/FishCompletion.h"

#include "tools/common/completion/CommandLineModel.h"
#include "tools/common/completion/ScriptText.h"

#include <algorithm>
#include <sstream>

namespace qel::tools {

namespace {

// In the texts below, @F@ stands for the program's name in functions, @values@ for all options that take a value and
// @context@ for the option that is passed on.
constexpr char const* reading =
    R"fish(# The words before the cursor that are neither options nor their values.
function __@F@_words
    set -l pending
    for word in (commandline -opc)[2..-1]
        if set -q pending[1]
            set -e pending
        else if contains -- $word @values@
            set pending $word
        else if not string match -q -- '-*' $word
            printf '%s\n' $word
        end
    end
end

)fish";

constexpr char const* placing =
    R"fish(# Whether the cursor is at this place, counted from 0, or at a later one if that is wanted.
function __@F@_at --argument-names place later
    set -l count (count (__@F@_words))
    test $count -eq $place; or test -n "$later" -a $count -gt $place
end

)fish";

constexpr char const* verbPlacing = R"fish(function __@F@_has_verb --argument-names verb
    set -l words (__@F@_words)
    test "$words[1]" = "$verb"
end

# Whether the cursor is at this place behind the verb, counted from 0, or at a later one if that is wanted.
function __@F@_at --argument-names verb place later
    set -l words (__@F@_words)
    test "$words[1]" = "$verb"; or return 1
    set -l count (math (count $words) - 1)
    test $count -eq $place; or test -n "$later" -a $count -gt $place
end

)fish";

constexpr char const* printing = R"fish(# What the program prints.
function __@F@_printed
    set -l words (commandline -opc | string replace -r '^~/' "$HOME/")
    set -l context
    set -l pending
    for word in $words[2..-1]
        if set -q pending[1]
            set context @context@ (string replace -r '^~/' "$HOME/" -- $word)
            set -e pending
        else if test "$word" = @context@
            set pending $word
        else if string match -q -- '@context@=*' $word
            set context $word
        end
    end
    $words[1] $context $argv 2>/dev/null
end

)fish";

std::string quoted(std::string_view text) {
    return '\'' + replaced(replaced(text, "\\", "\\\\"), "'", "\\'") + '\'';
}

char const* passedText(PassedWord passed) {
    switch (passed) {
    case PassedWord::None:
        break;
    case PassedWord::Current:
        return " (commandline -ct)";
    case PassedWord::Previous:
        return " (__@F@_words)[-1]";
    }
    return "";
}

/// The first argument, as the value of the option that is passed on. The verb is the word before.
constexpr char const* firstText =
    R"fish(@context@ (string replace -r '^~/' "$HOME/" -- (__@F@_words)[2]) )fish";

/// What follows the condition of a complete command: the candidates of an argument.
std::string candidateWords(Candidates const& candidates) {
    std::string list;
    for (auto const& word : candidates.words) {
        bool const isPlain = word.find_first_of(" ()'\"\\$>*?") == std::string::npos;
        list.append(list.empty() ? "" : " ").append(isPlain ? word : quoted(word));
    }
    if (!candidates.printed.empty()) {
        list.append(list.empty() ? "" : " ")
            .append("(__@F@_printed ")
            .append(candidates.areOfFirst ? firstText : "")
            .append(candidates.printed)
            .append(passedText(candidates.passed))
            .append(")");
    }
    return (list.empty() ? "" : " -a " + quoted(list)) + (candidates.areFiles ? " -F" : "");
}

class Script {
public:
    explicit Script(CommandLineModel const& model) : model_(model) {}

    std::string text() {
        auto const& program = model_.program;
        out_ << "# fish completion for " << program.name << "; made by \"" << program.name << ' '
             << model_.source << "\"\n\n"
             << replaced(reading, "@values@", allValueOptions()) << (hasVerbs() ? verbPlacing : placing);
        if (!model_.context.empty()) {
            out_ << printing;
        }
        out_ << "complete -c " << program.name << " -f\n";
        for (auto const& verb : model_.verbs) {
            complete("test (count (__@F@_words)) -eq 0",
                     " -a " + verb.name + " -d " + quoted(verb.description));
        }
        printCommand(program, "");
        for (auto const& verb : model_.verbs) {
            printCommand(verb, ' ' + verb.name);
        }
        auto const named = replaced(out_.str(), "@F@", model_.functionName());
        return replaced(named, "@context@", "--" + model_.context);
    }

private:
    bool hasVerbs() const { return !model_.verbs.empty(); }

    std::string allValueOptions() const {
        auto words = valueOptionWords(model_.program);
        for (auto const& verb : model_.verbs) {
            auto const own = valueOptionWords(verb);
            words.insert(words.end(), own.begin(), own.end());
        }
        std::sort(words.begin(), words.end());
        words.erase(std::unique(words.begin(), words.end()), words.end());
        return joined(words);
    }

    void complete(std::string const& condition, std::string const& what) {
        out_ << "complete -c " << model_.program.name << (condition.empty() ? "" : " -n " + quoted(condition))
             << what << '\n';
    }

    /// @param verb the verb with a blank before it, "" for the program itself
    void printCommand(CommandModel const& command, std::string const& verb) {
        auto const condition = verb.empty() ? "" : "__@F@_has_verb" + verb;
        for (auto const& option : command.options) {
            auto what = (option.shortName.empty() ? "" : " -s " + option.shortName) + " -l " + option.name;
            if (option.argument) {
                what.append(option.argument->candidates.areFiles ? " -r" : " -x")
                    .append(candidateWords(option.argument->candidates));
            }
            complete(condition, what + " -d " + quoted(option.description));
        }
        for (std::size_t place = 0; place < command.arguments.size(); ++place) {
            auto const& argument = command.arguments[place];
            if (!argument.candidates.isEmpty()) {
                complete("__@F@_at" + verb + ' ' + std::to_string(place) +
                             (argument.isRepeatable ? " later" : ""),
                         candidateWords(argument.candidates));
            }
        }
    }

    CommandLineModel const& model_;
    std::ostringstream out_;
};

} // namespace

std::string fishCompletion(CommandLineModel const& model) {
    return Script(model).text();
}

} // namespace qel::tools
