// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Completion of names while the user types.
#pragma once

#include "tools/qelshm/watch/UnitStructure.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qel::watch {

/// Completes the last word of a text to names of a unit, level by level: paths of points, and values behind a colon. A
/// word that begins no path may begin a level ("socket6") or a key ("active-power"). Upper and lower case are the same.
///
/// Threads: reentrant.
class NameCompletion {
public:
    /// Extends the last word as far as all names agree. Asked again for what it returned, it goes through the names, one
    /// after the other.
    /// @return the text; unchanged if no name fits
    std::string complete(std::string const& text, UnitStructure const& structure);

    /// The names that complete() chose among; none before.
    std::vector<std::string> const& candidates() const { return candidates_; }

    /// Forgets them: the user typed on.
    void reset();

private:
    std::vector<std::string> candidates_;
    std::size_t next_ = 0;
    std::string kept_;     ///< the text before the last word
    std::string returned_; ///< by the last completion
};

/// The names that begin with a word, each once and up to its next level, in the order of the unit. Reentrant.
std::vector<std::string> namesAfter(std::string const& word, UnitStructure const& structure);

} // namespace qel::watch
