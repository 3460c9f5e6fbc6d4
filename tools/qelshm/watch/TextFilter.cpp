// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/TextFilter.h"

#include "tools/qelshm/terminal/Utf8Text.h"

#include <algorithm>
#include <sstream>

namespace qel::watch {

TextFilter::TextFilter(std::string_view text) {
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        words_.push_back(word);
    }
}

bool TextFilter::matches(std::initializer_list<std::string_view> texts) const {
    return std::all_of(words_.begin(), words_.end(), [&](std::string const& word) {
        return std::any_of(texts.begin(), texts.end(),
                           [&](std::string_view text) { return tools::containsIgnoringCase(text, word); });
    });
}

} // namespace qel::watch
