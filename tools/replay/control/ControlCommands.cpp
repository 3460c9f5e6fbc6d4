// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/ControlCommands.h"

#include "tools/replay/csv/InputError.h"

#include <exception>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::tools {

namespace {

constexpr std::string_view setVerb = "set ";
constexpr std::string_view unsetVerb = "unset ";

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string namesText(std::vector<std::string> const& names) {
    return names.size() == 1 ? names.front() : std::to_string(names.size()) + " values";
}

/// A line, read. One of the two is there.
struct Command {
    std::string name; ///< of the values
    std::optional<Assignment> assignment{};
    std::optional<inspect::ValuePattern> released{};
};

Command parseCommand(std::string_view line) {
    if (startsWith(line, setVerb)) {
        auto const text = line.substr(setVerb.size());
        return {std::string(text.substr(0, text.find('='))), parseAssignment(text, {"set"})};
    }
    if (startsWith(line, unsetVerb)) {
        auto const text = line.substr(unsetVerb.size());
        return {std::string(text), std::nullopt, parsePattern(text, {"unset"})};
    }
    throw InputError({inQuotes(line)}, "unknown command", R"("set NAME=VALUE[,STATE]" or "unset NAME")");
}

std::string answerTo(Command const& command, std::vector<std::string> const& names) {
    if (names.empty() && command.assignment) {
        throw InputError({"set"}, "the unit has no value " + inQuotes(command.name) + " now",
                         "a name of \"qelshm list\", such as unit1/inlet1:active-power");
    }
    if (names.empty()) {
        throw InputError({"unset"}, "nothing is set by hand for " + inQuotes(command.name),
                         "the name of a value that was set");
    }
    return command.assignment ? "set " + namesText(names) + "; until it is unset or the replay ends"
                              : "unset " + namesText(names) + "; the recording goes on";
}

} // namespace

ControlCommands::ControlCommands(IValueSetter& setter, std::function<std::uint64_t()> due)
    : setter_(setter),
      due_(std::move(due)) {}

std::string ControlCommands::answer(std::string const& line) const {
    try {
        auto const command = parseCommand(line);
        auto const names = command.assignment ? setter_.set(*command.assignment, due_())
                                              : setter_.unset(*command.released, due_());
        return answerTo(command, names);
    } catch (std::exception const& error) {
        return std::string(errorAnswer) + error.what();
    }
}

void checkCommand(std::string const& line) {
    parseCommand(line);
}

} // namespace qel::tools
