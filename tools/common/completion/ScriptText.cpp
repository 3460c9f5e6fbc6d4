// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/completion/ScriptText.h"

#include "tools/common/completion/CommandLineModel.h"

namespace qel::tools {

std::string replaced(std::string_view text, std::string_view part, std::string_view replacement) {
    std::string result;
    std::size_t begin = 0;
    for (auto end = text.find(part); end != std::string_view::npos; end = text.find(part, begin)) {
        result.append(text.substr(begin, end - begin)).append(replacement);
        begin = end + part.size();
    }
    return result.append(text.substr(begin));
}

std::string quotedForShell(std::string_view text) {
    return '\'' + replaced(text, "'", R"('\'')") + '\'';
}

std::vector<std::string> optionWords(CommandModel const& command) {
    std::vector<std::string> words;
    for (auto const& option : command.options) {
        words.push_back("--" + option.name);
    }
    return words;
}

std::vector<std::string> valueOptionWords(CommandModel const& command) {
    std::vector<std::string> words;
    for (auto const& option : command.options) {
        if (option.argument) {
            words.push_back("--" + option.name);
        }
    }
    return words;
}

std::string joined(std::vector<std::string> const& words) {
    std::string text;
    for (auto const& word : words) {
        text.append(text.empty() ? "" : " ").append(word);
    }
    return text;
}

} // namespace qel::tools
