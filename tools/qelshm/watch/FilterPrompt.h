// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The filter while it is typed.
#pragma once

#include "tools/qelshm/watch/NameCompletion.h"

#include <string>
#include <vector>

namespace qel::watch {

/// A line of text that the user types, extends by completion, keeps or removes.
///
/// Threads: reentrant.
class FilterPrompt {
public:
    void begin() { isTyping_ = true; }
    void end();
    void clear();

    /// Appends a character.
    void type(char character);
    /// Removes the last character, if there is one.
    void erase();
    /// Completes the last word, see NameCompletion.
    void complete(UnitStructure const& structure);

    bool isTyping() const { return isTyping_; }
    std::string const& text() const { return text_; }
    /// @return the names that the last word may become; none before a completion
    std::vector<std::string> const& candidates() const { return completion_.candidates(); }

private:
    std::string text_;
    bool isTyping_ = false;
    NameCompletion completion_;
};

} // namespace qel::watch
