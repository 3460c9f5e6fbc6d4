// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a shell must know of a program's command line.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

/// A word of the line that a program gets when it prints candidates.
enum class PassedWord : std::uint8_t {
    None,
    Current,  ///< as far as it is typed
    Previous, ///< the argument before
};

/// What a shell offers for an argument; nothing by default. Reentrant.
struct Candidates {
    std::vector<std::string> words; ///< may contain blanks
    bool areFiles = false;          ///< files as well
    std::string printed = {};       ///< arguments by which the program prints more, a line each; "" for none
    PassedWord passed = PassedWord::None; ///< behind these arguments
    bool areOfFirst = false; ///< of what the first argument names; it goes with CommandLineModel::context

    bool isEmpty() const { return words.empty() && !areFiles && printed.empty(); }
};

/// Candidates by what the help calls the argument: "POINT", or "log NAME" for that of one verb, which goes first. Those of
/// FILE and PATH need not be given.
using CandidatesByName = std::map<std::string, Candidates>;

/// An argument of the program, of a verb or of an option. Reentrant.
struct ArgumentModel {
    std::string name; ///< as in the help
    Candidates candidates;
    bool isRepeatable = false;
};

/// An option. Reentrant.
struct OptionModel {
    std::string name;      ///< "depth"
    std::string shortName; ///< "d", "" for none
    std::string description;
    std::optional<ArgumentModel> argument; ///< none for a flag
};

/// A verb, or the program itself. Reentrant.
struct CommandModel {
    std::string name;
    std::string description;
    std::vector<OptionModel> options; ///< those of a verb without the program's own, which it takes as well
    std::vector<ArgumentModel> arguments;
};

/// A program's command line, as it is described to CLI11. Reentrant.
struct CommandLineModel {
    CommandModel program;
    std::vector<CommandModel> verbs; ///< empty for a program without verbs
    std::string source;  ///< arguments by which the program prints its completion script: "completion bash"
    std::string context; ///< option that is passed on when the program prints candidates; "" for none

    /// The program's name as part of a function's name.
    std::string functionName() const;
};

/// Reads the description of a program. Hidden options and verbs are left out. Reentrant.
CommandLineModel commandLineModel(CLI::App& app, CandidatesByName const& candidates);

} // namespace qel::tools
