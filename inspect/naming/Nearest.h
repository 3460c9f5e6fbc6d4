// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What somebody may have meant.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace qel::inspect {

/// The Levenshtein distance of two texts; upper and lower case are the same. Reentrant.
std::size_t editDistance(std::string_view from, std::string_view into);

/// Finds the candidate that is nearest to a text, by editDistance(); the first one of several.
///
/// Threads: reentrant.
class Nearest {
public:
    explicit Nearest(std::string_view text) : text_(text) {}

    void add(std::string_view candidate);

    /// @return "" without candidates
    std::string const& candidate() const { return nearest_; }

    /// @return the distance of candidate(); the greatest number without candidates
    std::size_t distance() const { return distance_; }

private:
    std::string text_;
    std::string nearest_;
    std::size_t distance_ = std::numeric_limits<std::size_t>::max();
};

} // namespace qel::inspect
