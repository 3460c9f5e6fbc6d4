// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A filter by words.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace qel::watch {

/// Words that must all occur, each in any of a row's texts; upper and lower case are the same.
///
/// Threads: reentrant.
class TextFilter {
public:
    /// Matches everything.
    TextFilter() = default;

    /// @param text words between blanks
    explicit TextFilter(std::string_view text);

    bool isEmpty() const { return words_.empty(); }

    /// @return whether each word occurs in at least one of the texts
    bool matches(std::initializer_list<std::string_view> texts) const;

private:
    std::vector<std::string> words_;
};

} // namespace qel::watch
