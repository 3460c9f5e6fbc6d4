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

/// Applies a key to the model. While the user types the filter, printable characters, backspace, Enter and Esc belong
/// to it. While the help is visible, every key closes it. Reentrant.
/// @param key as curses numbers it
void handleKey(WatchModel& model, int key);

/// A line of the help. Reentrant.
struct KeyHelp {
    char const* keys; ///< "Up Down, k j"
    char const* text; ///< what they do
    char const* hint; ///< short form for the last line of the screen; "" for none
};

/// In the order in which they are shown.
inline constexpr std::array<KeyHelp, 13> keyHelp{{
    {"Up Down, k j", "go to the row above or below", "Up Down move"},
    {"PgUp PgDn", "go up or down a page", ""},
    {"Home End, g G", "go to the first or last row", ""},
    {"Left Right, h l", "fold or unfold a point; go to its parent or into it", "Left Right fold"},
    {"Enter, space", "fold or unfold; in a flat order, show the value in the tree", ""},
    {"e, c", "unfold or fold all points", ""},
    {"s", "sort: as a tree, or only values by state, name or age", "s sort"},
    {"/", "filter by words in path, type, name or state", "/ filter"},
    {"Esc", "remove the filter", ""},
    {"f", "follow: go to each new alarm; on or off", "f follow"},
    {"?", "this help; any key closes it", "? help"},
    {"q, Ctrl-C", "quit", "q quit"},
    {"Ctrl-Z", "suspend; resume with fg", ""},
}};

} // namespace qel::watch
