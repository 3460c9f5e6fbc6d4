// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchKeys.h"

#include <curses.h>

#include <algorithm>

namespace qel::watch {

namespace {

struct Binding {
    int key;
    Action action;
};

constexpr int escape = 27;
constexpr int backspace = 8;
constexpr int tabulator = 9;
constexpr int deletion = 127; // what most terminals send for the backspace key
constexpr int firstPrintable = 32;
constexpr int lastPrintable = 126;

constexpr std::array<Binding, 47> bindings{{
    {KEY_UP, Action::Up},
    {'k', Action::Up},
    {KEY_DOWN, Action::Down},
    {'j', Action::Down},
    {KEY_PPAGE, Action::PageUp},
    {KEY_NPAGE, Action::PageDown},
    {KEY_HOME, Action::First},
    {'g', Action::First},
    {KEY_END, Action::Last},
    {'G', Action::Last},
    {'\n', Action::Toggle},
    {'\r', Action::Toggle},
    {KEY_ENTER, Action::Toggle},
    {' ', Action::Toggle},
    {KEY_RIGHT, Action::Open},
    {'l', Action::Open},
    {KEY_LEFT, Action::Close},
    {'h', Action::Close},
    {'e', Action::OpenAll},
    {'c', Action::CloseAll},
    {'s', Action::Sort},
    {'/', Action::Filter},
    {escape, Action::Clear},
    {'f', Action::Follow},
    {'n', Action::NextAlarm},
    {'N', Action::PreviousAlarm},
    {'p', Action::Pause},
    {'x', Action::Statistics},
    {'r', Action::Restart},
    {'m', Action::Mark},
    {'+', Action::LongerSpan},
    {'=', Action::LongerSpan},
    {'-', Action::ShorterSpan},
    {'w', Action::Why},
    {'v', Action::Events},
    {'[', Action::PaneUp},
    {']', Action::PaneDown},
    {'?', Action::Help},
    {KEY_F(1), Action::Help},
    {'q', Action::Quit},
    {'Q', Action::Quit},
    {KEY_EXIT, Action::Quit},
    {KEY_SR, Action::ScrollUp},
    {KEY_SF, Action::ScrollDown},
    {KEY_SPREVIOUS, Action::PaneUp},
    {KEY_SNEXT, Action::PaneDown},
    {'P', Action::Pause},
}};

constexpr bool isEachKeyOnce() {
    for (std::size_t first = 0; first < bindings.size(); ++first) {
        for (std::size_t second = first + 1; second < bindings.size(); ++second) {
            if (bindings[first].key == bindings[second].key) {
                return false;
            }
        }
    }
    return true;
}
static_assert(isEachKeyOnce());

/// Whether the key belonged to the filter.
bool typeKey(WatchModel& model, int key) {
    if (key >= firstPrintable && key <= lastPrintable) {
        model.type(static_cast<char>(key));
    } else if (key == KEY_BACKSPACE || key == backspace || key == deletion) {
        model.erase();
    } else if (key == '\n' || key == '\r' || key == KEY_ENTER) {
        model.endTyping();
    } else if (key == tabulator) {
        model.complete();
    } else {
        return false;
    }
    return true;
}

} // namespace

void handleKey(WatchModel& model, int key) {
    if (key == KEY_RESIZE) {
        return; // not a key: the screen has another size
    }
    if (model.isHelp()) {
        model.handle(Action::Help);
    } else if (!model.isTyping() || !typeKey(model, key)) {
        if (auto const action = actionOf(key)) {
            model.handle(*action);
        }
    }
}

std::optional<Action> actionOf(int key) {
    auto const* const found = std::find_if(bindings.begin(), bindings.end(),
                                           [&](Binding const& binding) { return binding.key == key; });
    return found == bindings.end() ? std::nullopt : std::optional(found->action);
}

} // namespace qel::watch
