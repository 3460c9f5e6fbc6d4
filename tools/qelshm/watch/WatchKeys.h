// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which key does what.
#pragma once

#include "tools/qelshm/watch/WatchModel.h"

#include <array>
#include <optional>

namespace qel::watch {

/// Looks up a key. Reentrant.
/// @param key as curses numbers it
/// @return nothing for a key without a meaning
std::optional<Action> actionOf(int key);

/// Applies a key to the model. While the user types the filter, printable characters, backspace, Tab, Enter and Esc belong
/// to it. While the help is visible, every key closes it. Reentrant.
/// @param key as curses numbers it
void handleKey(WatchModel& model, int key);

/// A line of the help. Reentrant.
struct KeyHelp {
    char const* keys; ///< "Up Down, k j"
    char const* text; ///< what they do
    char const* hint; ///< short form for the last line of the screen; "" for none
    int rank;         ///< of the hint: where there is little room, the lowest goes first
};

/// In the order in which they are shown.
inline constexpr std::array<KeyHelp, 18> keyHelp{{
    {"Up Down, k j", "go to the row above or below; also PgUp PgDn Home End g G", "", 0},
    {"Left Right, h l", "fold or unfold a point; go to its parent or into it", "", 0},
    {"Enter, space", "fold or unfold; in a flat order, show the value in the tree", "", 0},
    {"e, c", "unfold or fold all points", "", 0},
    {"s", "sort: as a tree, or only values by state, name or age", "s sort", 6},
    {"/", "filter by words in path, type, name or state", "/ filter", 8},
    {"Esc", "remove the filter", "", 0},
    {"n, N", "go to the next or previous alarm", "n alarm", 7},
    {"f", "follow: go to each new alarm; on or off", "f follow", 1},
    {"w", "why the selected point is not On; again: the graph", "w why", 5},
    {"v", "events: states, structure, restarts; again: the graph", "v events", 4},
    {"[ ]", "earlier or later lines of these two", "", 0},
    {"m", "keep the curve of this value in the graph, or remove it", "", 0},
    {"+ -", "graph of a longer or shorter time", "", 0},
    {"x, r", "minimum, maximum, mean and rate; begin them anew", "x more", 2},
    {"p", "pause, continue", "p pause", 3},
    {"?", "this help; any key closes it", "? help", 9},
    {"q, Ctrl-C", "quit; Ctrl-Z suspends, fg resumes", "q quit", 10},
}};

} // namespace qel::watch
