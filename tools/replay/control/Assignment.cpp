// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/Assignment.h"

#include "tools/common/Numbers.h"

#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/StateWord.h"

namespace qel::tools {

namespace {

constexpr std::string_view grammar = "NAME=VALUE[,STATE], such as unit1/inlet1:active-power=4000,alarm";

double readNumber(std::string_view text, InputPlace const& place) {
    auto const number = parseNumber(text);
    if (!number) {
        throw InputError(place, inQuotes(text) + " is not a number",
                         "a decimal number in the unit in which qelshm shows the value");
    }
    return *number;
}

eStatus_Bits readState(std::string_view text, InputPlace const& place) {
    auto const state = inspect::parseState(text);
    if (!state) {
        throw InputError(
            place, inQuotes(text) + " is not a state",
            "a state such as alarm, high-alarm, low-warning, lost, no-error, on or off, or its number; "
            "qelshm-region(5) lists all");
    }
    return *state;
}

} // namespace

inspect::ValuePattern parsePattern(std::string_view text, InputPlace const& place) {
    try {
        return inspect::ValuePattern(text);
    } catch (inspect::PatternError const& error) {
        throw InputError(place, error.what(), "a name such as unit1/inlet1:active-power");
    }
}

Assignment parseAssignment(std::string_view text, InputPlace const& place) {
    auto const equals = text.find('=');
    if (equals == std::string_view::npos) {
        throw InputError(place, inQuotes(text) + " sets nothing", grammar);
    }
    auto const name = text.substr(0, equals);
    auto const value = text.substr(equals + 1);
    auto const comma = value.find(',');
    Assignment assignment{parsePattern(name, place), readNumber(value.substr(0, comma), place)};
    if (!assignment.pattern.hasKey()) {
        throw InputError(place, inQuotes(name) + " names a point with all its values",
                         "the name of a value, such as unit1/inlet1:active-power");
    }
    if (comma != std::string_view::npos) {
        assignment.state = readState(value.substr(comma + 1), place);
    }
    return assignment;
}

std::string valueText(unsigned short key, double number, eStatus_Bits state) {
    return tav::ValueFormatter::str(key, number, " ").append(", ").append(shm::stateName(state));
}

} // namespace qel::tools
