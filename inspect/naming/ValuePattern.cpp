// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/ValuePattern.h"

#include "inspect/naming/PointPath.h"
#include "inspect/naming/QuotedText.h"
#include "inspect/naming/Svid.h"
#include "inspect/naming/ValuePath.h"

#include "domain/SensorIdentifier.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include <fnmatch.h>

namespace qel::inspect {

namespace {

constexpr char keySeparator = ':';
constexpr char levelSeparator = '/';
constexpr std::string_view anyLevels = "**";

bool hasWildcards(std::string_view text) {
    return text.find_first_of("*?[") != std::string_view::npos;
}

std::vector<std::string> levelsOf(std::string_view path) {
    std::vector<std::string> levels;
    for (std::size_t begin = 0;;) {
        auto const end = path.find(levelSeparator, begin);
        levels.emplace_back(path.substr(begin, end - begin));
        if (end == std::string_view::npos) {
            return levels;
        }
        begin = end + 1;
    }
}

bool matchesWord(std::string const& pattern, std::string const& word) {
    return fnmatch(pattern.c_str(), word.c_str(), FNM_CASEFOLD) == 0;
}

/// Whether the levels of a pattern, any number for "**", are those of a path.
bool matchesLevels(std::vector<std::string> const& pattern, std::vector<std::string> const& path) {
    // reached[n]: the part of the pattern read so far matches the first n levels of the path
    std::vector<bool> reached(path.size() + 1, false);
    reached.front() = true;
    for (auto const& level : pattern) {
        std::vector<bool> next(reached.size(), false);
        bool isReached = false;
        for (std::size_t count = 0; count < reached.size(); ++count) {
            isReached = isReached || reached[count];
            next[count] = level == anyLevels
                              ? isReached
                              : count > 0 && reached[count - 1] && matchesWord(level, path[count - 1]);
        }
        reached = std::move(next);
    }
    return reached.back();
}

} // namespace

ValuePattern::ValuePattern(std::string_view text) {
    auto const separator = text.find(keySeparator);
    auto const path = text.substr(0, separator);
    if (hasWildcards(path)) {
        levels_ = levelsOf(path);
        if (std::find(levels_.begin(), levels_.end(), "") != levels_.end()) {
            throw PatternError(quoted(text) + " has an empty level; write unit1/* or unit1/**");
        }
    } else {
        auto const id = parseSvid(path);
        auto const svid = id ? id : parsePath(path);
        if (!svid) {
            throw PatternError(
                quoted(path) +
                " is not the name of a point; names are like unit1/inlet1, with wildcards unit1/**");
        }
        point_ = shm::pointSvid(*svid);
        if (auto const keyOfId = SensorIdentifier::getKey(*svid); keyOfId != 0) {
            key_ = keyOfId;
        }
    }
    if (separator == std::string_view::npos) {
        return;
    }
    auto const key = text.substr(separator + 1);
    if (key_) {
        throw PatternError(quoted(text) + " has two keys; the sensor id names a value already");
    }
    if (hasWildcards(key)) {
        keyPattern_ = key;
        return;
    }
    key_ = parseKey(key);
    if (!key_) {
        throw PatternError(quoted(key) +
                           " is not the name of a value; names are like active-power, with wildcards *power");
    }
}

bool ValuePattern::matchesPoint(long long point) const {
    return point_ ? *point_ == shm::pointSvid(point) : matchesLevels(levels_, levelsOf(pointPath(point)));
}

bool ValuePattern::matches(long long point, unsigned short key) const {
    if (key_ && *key_ != key) {
        return false;
    }
    return (keyPattern_.empty() || matchesWord(keyPattern_, keyWord(key))) && matchesPoint(point);
}

bool selectsValue(ValuePatterns const& patterns, long long point, unsigned short key) {
    return patterns.empty() ||
           std::any_of(patterns.begin(), patterns.end(),
                       [&](ValuePattern const& pattern) { return pattern.matches(point, key); });
}

bool selectsPoint(ValuePatterns const& patterns, long long point) {
    return patterns.empty() ||
           std::any_of(patterns.begin(), patterns.end(), [&](ValuePattern const& pattern) {
               return !pattern.hasKey() && pattern.matchesPoint(point);
           });
}

std::string patternProblem(std::string const& text) {
    try {
        ValuePattern const pattern(text);
        return {};
    } catch (PatternError const& error) {
        return error.what();
    }
}

} // namespace qel::inspect
