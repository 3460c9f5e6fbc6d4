// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/PointFinder.h"

#include "inspect/naming/Nearest.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/QuotedText.h"
#include "inspect/naming/Svid.h"
#include "inspect/naming/ValuePath.h"

#include "domain/SensorIdentifier.h"
#include "format/Names.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

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

} // namespace

std::uint32_t PointFinder::point(std::string_view text) const {
    auto const id = parseSvid(text);
    auto const svid = id ? id : parsePath(text);
    auto const found = svid ? node(*svid) : std::nullopt;
    if (found) {
        return *found;
    }
    throw NotFoundError(noPointText(text));
}

std::string PointFinder::noPointText(std::string_view text) const {
    auto problem = "there is no point " + quoted(text);
    if (tree_.nodes().empty()) {
        problem += "; there are no points at all";
    } else if (!parseSvid(text)) { // ids that look alike belong to points that have nothing in common
        Nearest nearest(text);
        for (auto const& candidate : tree_.nodes()) {
            nearest.add(pointPath(svidOf(candidate)));
        }
        problem += "; the nearest one is " + nearest.candidate();
    }
    return problem;
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
    auto const number = parseKey(key);
    for (auto const pos : tree_.valuesOf(point)) {
        auto const candidate = image_.region().values[pos].key;
        if (number == candidate || isSameWord(key, shm::keyName(candidate))) {
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

bool PointFinder::hasMatch(ValuePattern const& pattern) const {
    auto const& nodes = tree_.nodes();
    return std::any_of(nodes.begin(), nodes.end(), [&](PointNode const& node) {
        auto const point = svidOf(node);
        if (!pattern.hasKey()) {
            return pattern.matchesPoint(point);
        }
        auto const values = tree_.valuesOf(node);
        return std::any_of(values.begin(), values.end(), [&](std::uint32_t pos) {
            return pattern.matches(point, image_.region().values[pos].key);
        });
    });
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
