// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Choices.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>

#include <sstream>

namespace qel::tools {

namespace {

constexpr char const* mark = "one of "; // begins the name of each oneOf()

} // namespace

CLI::Validator oneOf(std::vector<std::string> const& words, LetterCase letterCase) {
    std::string name = mark;
    for (auto const& word : words) {
        name.append(word).append(" ");
    }
    CLI::Validator accepted =
        letterCase == LetterCase::Exact ? CLI::IsMember(words) : CLI::IsMember(words, CLI::ignore_case);
    return accepted.description("").name(name);
}

std::vector<std::string> choicesOf(CLI::Option& option) {
    std::vector<std::string> words;
    try {
        std::string const name = option.get_validator(0)->get_name();
        if (name.rfind(mark, 0) == 0) {
            std::istringstream rest(name.substr(std::string(mark).size()));
            for (std::string word; rest >> word;) {
                words.push_back(word);
            }
        }
    } catch (CLI::OptionNotFound const&) {
        words.clear(); // without any check
    }
    return words;
}

} // namespace qel::tools
