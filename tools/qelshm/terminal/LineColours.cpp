// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/LineColours.h"

#include <curses.h>
#include <term.h> // after curses.h

#include <cstdlib>

namespace qel::watch {

namespace {

constexpr int noColour = -1;
constexpr std::array<int, 5> colours{noColour, noColour, COLOR_CYAN, COLOR_YELLOW, COLOR_RED};

/// What the description says for a string; "" for nothing.
std::string capability(char const* name) {
    char const* const text = tigetstr(name);
    bool const isThere = text != nullptr && reinterpret_cast<std::intptr_t>(text) != -1;
    return isThere ? text : "";
}

} // namespace

bool areColoursAllowed() {
    char const* const refused = std::getenv("NO_COLOR");
    return refused == nullptr || *refused == '\0';
}

LineColours::LineColours(int descriptor) {
    int error = 0;
    if (setupterm(nullptr, descriptor, &error) != OK) {
        return;
    }
    auto const colour = capability("setaf");
    end_ = capability("sgr0");
    for (std::size_t severity = 0; severity < colours.size(); ++severity) {
        if (!colour.empty() && !end_.empty() && colours.at(severity) != noColour) {
            begins_.at(severity) = tiparm(colour.c_str(), colours.at(severity));
        }
    }
    del_curterm(cur_term);
}

std::string LineColours::painted(std::string const& text, Severity severity) const {
    auto const& begin = begins_.at(static_cast<std::size_t>(severity));
    return begin.empty() ? text : begin + text + end_;
}

} // namespace qel::watch
