// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/TrailingCommand.h"

#include <algorithm>

namespace qel::tools {

std::vector<std::string> withTrailingCommand(int argc, char const* const* argv, std::string const& option) {
    std::vector<std::string> words(argv, argv + argc);
    auto const assigned = option + '=';
    auto const found = std::find_if(words.begin(), words.end(), [&](std::string const& word) {
        return word == option || word.compare(0, assigned.size(), assigned) == 0;
    });
    auto const command = found != words.end() && *found == option ? found + 1 : found;
    if (words.end() - command < 2) {
        return words;
    }
    std::vector<std::string> const arguments(command + 1, words.end());
    words.erase(command + 1, words.end());
    for (auto const& argument : arguments) {
        if (argument.empty()) { // "--on-change=" would be an option without a value
            words.insert(words.end(), {option, argument});
        } else {
            words.push_back(assigned + argument);
        }
    }
    return words;
}

} // namespace qel::tools
