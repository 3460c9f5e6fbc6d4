// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/NameCompletion.h"

#include "inspect/naming/ValuePath.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <unordered_set>

namespace qel::watch {

namespace {

constexpr char const* levelEnds = "/:";

bool isSameLetter(char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) == std::tolower(static_cast<unsigned char>(right));
}

bool beginsWith(std::string_view name, std::string_view word) {
    return name.size() >= word.size() && std::equal(word.begin(), word.end(), name.begin(), isSameLetter);
}

/// Names in order, each once.
class NameList {
public:
    explicit NameList(std::string const& word) : word_(word) {}

    void add(std::string_view name) {
        // The word itself would complete nothing.
        if (beginsWith(name, word_) && name.size() > word_.size() && seen_.insert(std::string(name)).second) {
            names_.emplace_back(name);
        }
    }

    /// Adds what a path has up to the level behind the word.
    void addLevel(std::string const& path) {
        add(std::string_view(path).substr(0, path.find_first_of(levelEnds, word_.size() + 1)));
    }

    std::vector<std::string> take() { return std::move(names_); }
    bool isEmpty() const { return names_.empty(); }

private:
    std::string const& word_;
    std::vector<std::string> names_;
    std::unordered_set<std::string> seen_;
};

std::string commonStart(std::vector<std::string> const& names) {
    auto start = names.front();
    for (auto const& name : names) {
        auto const differing =
            std::mismatch(start.begin(), start.end(), name.begin(), name.end(), isSameLetter).first;
        start.erase(differing, start.end());
    }
    return start;
}

} // namespace

std::vector<std::string> namesAfter(std::string const& word, UnitStructure const& structure) {
    NameList names(word);
    for (auto const& point : structure.points()) {
        names.addLevel(point.path);
    }
    for (auto const& value : structure.values()) {
        names.addLevel(value.path);
    }
    if (names.isEmpty()) {
        for (auto const& point : structure.points()) {
            names.add(point.name);
        }
        for (auto const& value : structure.values()) {
            names.add(inspect::keyWord(value.key));
        }
    }
    return names.take();
}

std::string NameCompletion::complete(std::string const& text, UnitStructure const& structure) {
    if (text == returned_ && candidates_.size() > 1) {
        returned_ = kept_ + candidates_[next_++ % candidates_.size()];
        return returned_;
    }
    auto const begin = text.find_last_of(' ') + 1; // 0 without a blank
    auto const word = text.substr(begin);
    kept_ = text.substr(0, begin);
    candidates_ = namesAfter(word, structure);
    next_ = 0;
    returned_ = candidates_.empty() ? text : kept_ + commonStart(candidates_);
    return returned_;
}

void NameCompletion::reset() {
    candidates_.clear();
    returned_.clear();
}

} // namespace qel::watch
