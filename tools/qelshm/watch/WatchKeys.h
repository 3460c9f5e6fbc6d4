// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which key does what.
#pragma once

#include "tools/qelshm/watch/WatchAction.h"
#include "tools/qelshm/watch/WatchModel.h"

#include <array>
#include <optional>

namespace qel::watch {

/// What a key asks for, as curses numbers it; nothing for a key without a meaning. Any thread.
std::optional<Action> actionOf(int key);

/// Does what a key asks for: while the filter is typed, printable characters, backspace, Enter and Esc belong to it;
/// while the help is shown, every key ends it.
void handleKey(WatchModel& model, int key);

struct KeyHelp {
    char const* keys; ///< "Up Down, k j"
    char const* text; ///< what they do
    char const* hint; ///< both in few words for the last line of the screen, "" to leave them out there
};

/// In the order in which they are shown.
inline constexpr std::array<KeyHelp, 13> keyHelp{{
    {"Up Down, k j", "go to the row above or below", "Up Down move"},
    {"PgUp PgDn", "a page up or down", ""},
    {"Home End, g G", "the first or the last row", ""},
    {"Left Right, h l", "fold or unfold a point; up to its parent, down into it", "Left Right fold"},
    {"Enter, space", "fold or unfold; in a flat order, show the value in the tree", ""},
    {"e, c", "unfold or fold all points", ""},
    {"s", "sort: tree, then values alone by state, name, age", "s sort"},
    {"/", "filter by words in path, type, name or state; Enter keeps it", "/ filter"},
    {"Esc", "take the filter away", ""},
    {"f", "follow: go to each new alarm, or no longer", "f follow"},
    {"?", "this help; any key ends it", "? help"},
    {"q, Ctrl-C", "quit", "q quit"},
    {"Ctrl-Z", "suspend; fg comes back", ""},
}};

} // namespace qel::watch
