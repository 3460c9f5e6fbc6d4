// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Finding rows by text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace qel::watch {

/// Words that must all occur, each in any of a row's texts; upper and lower case are the same. Threads: const
/// operations from any thread.
class TextFilter {
public:
    /// Lets everything through.
    TextFilter() = default;

    /// @param text words between blanks
    explicit TextFilter(std::string_view text);

    bool isEmpty() const { return words_.empty(); }

    /// @param texts in lower case
    bool matches(std::initializer_list<std::string_view> texts) const;

private:
    std::vector<std::string> words_;
};

} // namespace qel::watch
