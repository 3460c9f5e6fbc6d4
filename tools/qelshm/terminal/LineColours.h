// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Colours for lines of text.
#pragma once

#include "tools/qelshm/watch/StateInfo.h"

#include <array>
#include <cstddef>
#include <string>

namespace qel::watch {

/// Whether the environment allows colours: NO_COLOR is not set, or empty. Any thread that sets no variables.
bool areColoursAllowed();

/// How the terminal is told to change its colour, by its own description. Threads: const operations from any thread.
class LineColours {
public:
    /// No colours.
    LineColours() = default;

    /// Those of a terminal; none when it knows none or is not known.
    /// @param descriptor open on the terminal
    explicit LineColours(int descriptor);

    std::string painted(std::string const& text, Severity severity) const;

private:
    std::array<std::string, 5> begins_; ///< by severity
    std::string end_;
};

} // namespace qel::watch
