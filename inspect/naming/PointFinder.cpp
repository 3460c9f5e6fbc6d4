// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/PointFinder.h"

#include "inspect/naming/PointPath.h"
#include "inspect/naming/QuotedText.h"
#include "inspect/naming/Svid.h"

#include "domain/SensorIdentifier.h"
#include "format/Names.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace qel::inspect {

namespace {

constexpr std::size_t listedKeys = 20; ///< a message names at most this many

char lowerCase(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

bool isSameWord(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

/// The Levenshtein distance of two texts, ignoring case.
std::size_t distance(std::string_view from, std::string_view into) {
    std::vector<std::size_t> row(into.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < into.size(); ++j) {
            auto const changed = diagonal + (lowerCase(from[i]) == lowerCase(into[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

} // namespace

std::uint32_t PointFinder::point(std::string_view text) const {
    auto const id = parseSvid(text);
    auto const svid = id ? id : parsePath(text);
    auto const found = svid ? node(*svid) : std::nullopt;
    if (found) {
        return *found;
    }
    auto const nearest = nearestPath(svid ? pointPath(*svid) : std::string(text));
    auto const advice = nearest.empty() ? "; there are no points at all" : "; the nearest one is " + nearest;
    throw NotFoundError("there is no point " + quoted(text) + advice);
}

std::optional<std::uint32_t> PointFinder::node(long long svid) const {
    auto const& nodes = tree_.nodes();
    auto const found = std::find_if(nodes.begin(), nodes.end(), [&](PointNode const& candidate) {
        return svidOf(candidate) == shm::pointSvid(svid);
    });
    if (found == nodes.end()) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(found - nodes.begin());
}

std::uint32_t PointFinder::value(std::uint32_t node, std::string_view key) const {
    auto const& point = tree_.nodes().at(node);
    auto const number = parseSvid(key);
    for (auto const pos : tree_.valuesOf(point)) {
        auto const candidate = image_.region().values[pos].key;
        if (number ? *number == candidate : isSameWord(key, shm::keyName(candidate))) {
            return pos;
        }
    }
    throw NotFoundError(pointPath(svidOf(point)) + " has no value " + quoted(key) + "; it has " +
                        keysOf(point));
}

std::optional<std::uint32_t> PointFinder::value(std::uint32_t node, unsigned short key) const {
    auto const positions = tree_.valuesOf(tree_.nodes().at(node));
    auto const* const found = std::find_if(positions.begin(), positions.end(), [&](std::uint32_t pos) {
        return image_.region().values[pos].key == key;
    });
    return found == positions.end() ? std::nullopt : std::optional(*found);
}

std::string PointFinder::nearestPath(std::string_view path) const {
    std::string nearest;
    auto shortest = std::numeric_limits<std::size_t>::max();
    for (auto const& candidate : tree_.nodes()) {
        auto candidatePath = pointPath(svidOf(candidate));
        auto const away = distance(path, candidatePath);
        if (away < shortest) {
            shortest = away;
            nearest = std::move(candidatePath);
        }
    }
    return nearest;
}

std::string PointFinder::keysOf(PointNode const& node) const {
    std::string names;
    std::size_t listed = 0;
    for (auto const pos : tree_.valuesOf(node)) {
        if (listed++ == listedKeys) {
            return names + ", ...";
        }
        names.append(names.empty() ? "" : ", ").append(shm::keyName(image_.region().values[pos].key));
    }
    return names.empty() ? "none" : names;
}

std::optional<unsigned short> keyInText(std::string_view text) {
    auto const svid = parseSvid(text);
    auto const key = svid ? SensorIdentifier::getKey(*svid) : 0;
    return key != 0 ? std::optional<unsigned short>(key) : std::nullopt;
}

} // namespace qel::inspect
